// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "tests/fixtures/Eventually.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTest>

#include <memory>

/// A data directory and a runtime directory, and the program itself started over them as a user starts it.
struct ProgramHome
{
    TemporaryDataDirectory data;
    QTemporaryDir runtime;

    std::unique_ptr<QProcess> start(const QStringList &arguments = {}) const
    {
        auto program = std::make_unique<QProcess>();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"QUILLWIRE_DATA"_s, data.directory().path());
        environment.insert(u"QUILLWIRE_RUNTIME_DIR"_s, runtime.path());
        environment.insert(u"XDG_CONFIG_HOME"_s, runtime.path());
        program->setProcessEnvironment(environment);
        program->setProcessChannelMode(QProcess::ForwardedChannels);
        program->start(QString::fromUtf8(PROGRAM), arguments);
        return program;
    }

    /// Waits without a halt of this thread's server.
    static bool ended(const QProcess &program)
    {
        return eventually([&program] { return program.state() == QProcess::NotRunning; });
    }

    /// Asks the program to end, and gives the milliseconds that it took.
    static qint64 end(QProcess &program)
    {
        QElapsedTimer timer;
        timer.start();
        program.terminate();
        const bool isOver = ended(program);
        const qint64 took = timer.elapsed();
        [&] { QVERIFY(isOver && program.exitStatus() == QProcess::NormalExit && program.exitCode() == 0); }();
        return took;
    }
};
