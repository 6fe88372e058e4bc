// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class MainFrame;

/// A sign of life while something holds the window: the pointer waits, and the status bar says that a feed is opened.
/// Both are seen at once, without events, and gone with this object.
class BusySign final
{
public:
    explicit BusySign(MainFrame &frame);
    BusySign(const BusySign &) = delete;
    BusySign &operator=(const BusySign &) = delete;
    ~BusySign();

private:
    MainFrame &m_frame;
};
