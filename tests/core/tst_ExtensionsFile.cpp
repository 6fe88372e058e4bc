// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/ExtensionsFile.h"
#include "tests/fixtures/RunTimeErrors.h"
#include "tests/fixtures/Steps.h"

#include <QTemporaryDir>
#include <QTest>

class TestExtensionsFile : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(u"extensions.ini"_s);

    static QString told(const Extensions &extensions, const QStringList &broken = {})
    {
        QStringList on;
        for (const ExtensionKey &key : extensionKeys)
            if (extensions.*key.isOn)
                on += key.name;
        return u"on: "_s + on.join(u' ') + (broken.isEmpty() ? QString() : u"; broken: "_s + broken.join(u' '));
    }

private Q_SLOTS:
    /// A step sets a key and tells what the file holds then, "|" for the ends of its lines.
    void theFileIsReadAndEdited()
    {
        std::unique_ptr<ExtensionsFile> file;
        const auto begin = [&](const Steps::Given &given) {
            QFile::remove(m_path);
            if (given.contains(u"file"_s))
                Files::write(m_path, QString(given[u"file"_s]).replace(u'~', u'=').replace(u'/', u'\n').toUtf8());
            file = std::make_unique<ExtensionsFile>(m_path);
            const Extensions &live = file->extensions();
            const QString before = told(live);
            const QStringList broken = file->load();
            return before == "on: "_L1 ? told(live, broken) : u"on before it was read"_s;
        };
        const auto take = [&](const QString &step) -> QString {
            const QStringList words = step.split(u' ');
            for (const ExtensionKey &key : extensionKeys)
                if (words[0] == key.name)
                    file->set(key, words[1] == "on"_L1);
            ExtensionsFile again(m_path);
            again.load();
            const bool same = told(again.extensions()) == told(file->extensions());
            return QString::fromUtf8(Files::read(m_path).bytes).replace(u'\n', u'|') + (same ? u" "_s : u" NOT "_s) +
                   told(file->extensions());
        };
        QCOMPARE((Steps{begin, take}.differenceFrom(u"extensions.steps"_s)), QString());
    }

    void whatCannotBeWrittenDoesNotHold()
    {
        ExtensionsFile lost(m_folder.filePath(u"missing/extensions.ini"_s));
        QCOMPARE(errorOf([&] { lost.set(extensionKeys[0], true); }), 76);
        QVERIFY(!lost.extensions().https);
        ExtensionsFile folder(m_folder.path()); // is there, and can't be read as a file
        QCOMPARE(folder.load(), QStringList());
        QCOMPARE(errorOf([&] { folder.set(extensionKeys[0], true); }), 70);
        QVERIFY(!folder.extensions().https);
    }
};

QTEST_GUILESS_MAIN(TestExtensionsFile)
#include "tst_ExtensionsFile.moc"
