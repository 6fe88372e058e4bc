// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QHeaderView>

/// A header across the top whose captions end in dots where they have no room.
class CaptionHeader final : public QHeaderView
{
    Q_OBJECT

public:
    explicit CaptionHeader(QWidget *parent = nullptr);

    /// The caption of a section as it is drawn.
    QString shownCaption(int section) const;

protected:
    void initStyleOptionForIndex(QStyleOptionHeader *option, int section) const override;
};
