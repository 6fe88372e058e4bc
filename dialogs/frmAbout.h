#pragma once

#include "controls/DialogBase.h"

class MainWindow;

/// The box "À propos": fixed texts, and three links that go to the system's browser. For one showing: construct,
/// exec().
class frmAbout final : public DialogBase
{
    Q_OBJECT

public:
    explicit frmAbout(MainWindow &window);
};
