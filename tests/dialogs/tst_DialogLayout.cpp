// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/UpDown.h"
#include "core/AppSettings.h"
#include "core/FeedTables.h"
#include "dialogs/frmAbout.h"
#include "dialogs/frmAuthentification.h"
#include "dialogs/frmExport.h"
#include "dialogs/frmImport.h"
#include "dialogs/frmOptions.h"
#include "dialogs/frmProprietes.h"
#include "dialogs/frmRechercher.h"
#include "dialogs/frmSendMail.h"
#include "engine/feed/CachedFeed.h"
#include "exchange/ImportRun.h"
#include "exchange/OpmlDownload.h"
#include "platform/Literals.h"
#include "platform/MailSender.h"
#include "support/clsDES.h"
#include "tests/fixtures/FakeDownloader.h"
#include "tests/fixtures/FakeMessages.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedLayout>
#include <QTabWidget>
#include <QTest>

namespace {

constexpr const char *dialogNames[] = {"frmImport",  "frmExport",   "frmRechercher",       "frmProprietes",
                                       "frmOptions", "frmSendMail", "frmAuthentification", "frmAbout"};

} // namespace

/// What holds for the looks of every dialog. Its controls stand in data/controls.txt, a line each.
class DialogLayoutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void noTextIsCut_data();
    void noTextIsCut();
    void everyControlIsAsInTheTable();

private:
    std::unique_ptr<QDialog> make(const QString &name);
    void checkTexts(const QWidget &dialog) const;
    static QString told(const QDialog &dialog);

    QFont m_font = QApplication::font();
    QWidget m_window;
    AppSettings m_settings;
    FeedTables m_tables;
    clsDES m_cipher;
    FakeMessages m_messages;
    OpmlDownload m_download{std::make_unique<FakeDownloader>(), QString()};
    ImportRun m_run{std::make_unique<FakeDownloader>(), QString(), {}, {}};
};

void DialogLayoutTest::init()
{
    m_settings.startMode = u"Minimisé"_s;
}

void DialogLayoutTest::cleanup()
{
    QApplication::setFont(m_font);
}

std::unique_ptr<QDialog> DialogLayoutTest::make(const QString &name)
{
    QWidget *const window = &m_window;
    if (name == u"frmImport"_s)
        return std::make_unique<frmImport>(window, m_messages, m_download, m_run);
    if (name == u"frmExport"_s)
        return std::make_unique<frmExport>(window, QString());
    if (name == u"frmRechercher"_s)
        return std::make_unique<frmRechercher>(window, frmRechercher::Port(), SearchEndpoints(), 1);
    if (name == u"frmProprietes"_s) {
        auto form = std::make_unique<frmProprietes>(
            window, frmProprietes::Port{std::make_shared<CachedFeed>(), false, {}, {}, m_tables, m_cipher});
        form->addAuthentication();
        return form;
    }
    if (name == u"frmOptions"_s)
        return std::make_unique<frmOptions>(window, m_settings, frmOptions::RunAtStartup{[] { return 2; }, [](int) {}});
    if (name == u"frmSendMail"_s)
        return std::make_unique<frmSendMail>(window, m_settings, m_messages, u"x"_s, Wait(), frmSendMail::MakeMail());
    if (name == u"frmAuthentification"_s)
        return std::make_unique<frmAuthentification>(window, frmAuthentification::Port());
    return std::make_unique<frmAbout>(window, frmAbout::OpenInSystemBrowser());
}

/// Every label and button on show has the room that it asks for, and lies within its dialog.
void DialogLayoutTest::checkTexts(const QWidget &dialog) const
{
    for (const QWidget *const widget : dialog.findChildren<QWidget *>()) {
        const bool bearsText = qobject_cast<const QAbstractButton *>(widget) ||
                               qobject_cast<const QComboBox *>(widget) || qobject_cast<const QLabel *>(widget) ||
                               widget->inherits("QGroupBox") || qobject_cast<const QTabBar *>(widget) ||
                               qobject_cast<const QLineEdit *>(widget);
        const auto *const button = qobject_cast<const QAbstractButton *>(widget);
        if (button && button->text().isEmpty() && button->icon().isNull())
            continue; // an arrow
        if (!bearsText || !widget->isVisible() || widget->objectName().startsWith(u"qt_"_s))
            continue;
        const auto *const label = qobject_cast<const QLabel *>(widget);
        const QSize wanted = label && label->wordWrap()
                                 ? QSize(0, label->heightForWidth(label->width()))
                                 : widget->minimumSizeHint().expandedTo(
                                       qobject_cast<const QAbstractButton *>(widget) ? widget->sizeHint() : QSize());
        const QByteArray about = (dialog.objectName() + u' ' + widget->objectName() + u' ' +
                                  QString::fromLatin1(widget->metaObject()->className()))
                                     .toUtf8();
        QVERIFY2(widget->width() >= wanted.width() && widget->height() >= wanted.height(), about.constData());
        const QRect place(widget->mapTo(&dialog, QPoint()), widget->size());
        QVERIFY2(dialog.rect().contains(place), about.constData());
    }
}

void DialogLayoutTest::noTextIsCut_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<double>("scale");
    for (const char *const name : dialogNames)
        for (const double scale : {1.0, 1.5, 2.0})
            QTest::newRow(QByteArray(name).append(" at ").append(QByteArray::number(scale)).constData())
                << QString::fromLatin1(name) << scale;
}

void DialogLayoutTest::noTextIsCut()
{
    QFETCH(QString, name);
    QFETCH(double, scale);
    QFont font = m_font;
    font.setPointSizeF(font.pointSizeF() * scale);
    QApplication::setFont(font);
    const std::unique_ptr<QDialog> dialog = make(name);
    dialog->setObjectName(name);
    dialog->show();
    checkTexts(*dialog);
    if (auto *const tabs = dialog->findChild<QTabWidget *>())
        for (int i = 0; i < tabs->count(); ++i) {
            tabs->setCurrentIndex(i);
            checkTexts(*dialog);
        }
    if (auto *const pages = dialog->findChild<QStackedLayout *>())
        for (int i = 0; i < pages->count(); ++i) {
            pages->setCurrentIndex(i);
            QApplication::processEvents();
            checkTexts(*dialog);
        }
}

/// A line for each control: its name, text and state.
QString DialogLayoutTest::told(const QDialog &dialog)
{
    QString lines = u"["_s + dialog.windowTitle() + u"]\n"_s;
    for (QWidget *const widget : dialog.findChildren<QWidget *>()) {
        const auto *const button = qobject_cast<const QAbstractButton *>(widget);
        const auto *const tabs = qobject_cast<const QTabBar *>(widget);
        const auto *const list = qobject_cast<const QComboBox *>(widget);
        const auto *const box = qobject_cast<const QLineEdit *>(widget);
        const bool isOfTheUser = widget->objectName() == u"txtNom"_s;
        const bool takesKeys = (widget->focusPolicy() & Qt::TabFocus) && !widget->focusProxy();
        QAccessibleInterface *const accessible = QAccessible::queryAccessibleInterface(widget);
        QStringList parts = {accessible->text(QAccessible::Name).simplified()};
        if (qobject_cast<QTabBar *>(widget->parentWidget()) || qobject_cast<QComboBox *>(widget->parentWidget()))
            continue;
        for (int i = 0; tabs && i < tabs->count(); ++i)
            parts += tabs->tabText(i);
        for (int i = 0; list && i < list->count(); ++i)
            parts += list->itemText(i);
        if (box)
            parts += (isOfTheUser ? u"the user's name"_s : u'"' + box->text() + u'"') +
                     (box->echoMode() == QLineEdit::Password ? u" secret"_s : QString());
        if (auto *const upDown = qobject_cast<UpDown *>(widget)) {
            const int first = upDown->value();
            upDown->stepBy(-9999);
            const int least = upDown->value();
            upDown->stepBy(1);
            const int step = upDown->value() - least;
            upDown->stepBy(9999);
            parts += u"%1 in %2 to %3 by %4"_s.arg(first).arg(least).arg(upDown->value()).arg(step);
        }
        if (button && button->isChecked())
            parts += u"checked"_s;
        if (const auto *const push = qobject_cast<const QPushButton *>(widget); push && push->isDefault())
            parts += u"default"_s;
        if (!widget->isEnabledTo(&dialog))
            parts += u"disabled"_s;
        if (widget->isHidden())
            parts += u"hidden"_s;
        if (widget->property("readOnly").toBool())
            parts += u"read only"_s;
        if (takesKeys && parts.constFirst().isEmpty() && !tabs)
            parts += u"NAMELESS"_s;
        if (!parts.join(QString()).isEmpty() && (tabs || !widget->objectName().startsWith(u"qt_"_s)))
            lines += widget->objectName() + u": "_s + parts.join(u" | "_s) + u'\n';
    }
    return lines;
}

void DialogLayoutTest::everyControlIsAsInTheTable()
{
    QString all;
    for (const char *const name : dialogNames)
        all += told(*make(QString::fromLatin1(name))) + u'\n';
    QFile table(QString::fromUtf8(TEST_DATA_DIR "/controls.txt"));
    QVERIFY(table.open(QIODevice::ReadOnly));
    const QStringList are = all.split(u'\n');
    const QStringList wanted = QString::fromUtf8(table.readAll()).split(u'\n');
    for (qsizetype i = 0; i < are.size(); ++i)
        QCOMPARE(are[i], wanted.value(i));
    QCOMPARE(are.size(), wanted.size());
}

QTEST_MAIN(DialogLayoutTest)
#include "tst_DialogLayout.moc"
