// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <memory>

/// Plays a sound file and goes on at once.
class SoundPlayer
{
public:
    SoundPlayer() = default;
    SoundPlayer(const SoundPlayer &) = delete;
    SoundPlayer &operator=(const SoundPlayer &) = delete;
    virtual ~SoundPlayer() = default;

    /// Plays `file`; one that is missing, empty or no sound is passed over in silence.
    virtual void play(const QString &file) = 0;
};

/// Plays wave files through the desktop's sound. The sound system is touched at the first sound only.
class WaveSoundPlayer final : public SoundPlayer
{
public:
    WaveSoundPlayer();
    ~WaveSoundPlayer() override;

    void play(const QString &file) override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};
