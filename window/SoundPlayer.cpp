// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/SoundPlayer.h"

#include <QFileInfo>
#include <QSoundEffect>
#include <QUrl>

struct WaveSoundPlayer::Private
{
    QSoundEffect effect;
};

WaveSoundPlayer::WaveSoundPlayer() = default;
WaveSoundPlayer::~WaveSoundPlayer() = default;

void WaveSoundPlayer::play(const QString &file)
{
    const QFileInfo info(file);
    if (file.isEmpty() || !info.isFile() || info.size() == 0)
        return;
    // A new effect each time: the file may have changed, and one that failed to load would stay silent.
    d = std::make_unique<Private>();
    d->effect.setSource(QUrl::fromLocalFile(info.absoluteFilePath()));
    d->effect.play();
}
