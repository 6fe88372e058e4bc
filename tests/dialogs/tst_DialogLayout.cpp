// SPDX-License-Identifier: GPL-3.0-or-later

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
#include "tests/dialogs/DialogDump.h"
#include "tests/fixtures/FakeDownloader.h"
#include "tests/fixtures/FakeMessages.h"
#include "tests/fixtures/Golden.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
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

/// What holds for the looks of every dialog. Its controls and their places stand in data/controls.txt, a line each.
class DialogLayoutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void noTextIsCut_data();
    void noTextIsCut();
    void everyControlIsAsInTheTable();
    void longTextsAreShownInTime();

private:
    std::unique_ptr<QDialog> make(const QString &name);
    void setFontScale(double scale) const;
    void checkTexts(const QWidget &dialog) const;

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

void DialogLayoutTest::setFontScale(double scale) const
{
    QFont font = m_font;
    font.setPointSizeF(font.pointSizeF() * scale);
    QApplication::setFont(font);
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
    setFontScale(scale);
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

void DialogLayoutTest::everyControlIsAsInTheTable()
{
    for (const double scale : {1.0, 1.5}) {
        setFontScale(scale);
        QString all;
        for (const char *const name : dialogNames)
            all += DialogDump::told(*make(QString::fromLatin1(name)));
        QCOMPARE(differenceFromGolden(u"controls.txt"_s, all), QString());
    }
}

void DialogLayoutTest::longTextsAreShownInTime()
{
    const auto shown = [](const QWidget &form, const char *name) {
        const auto *const box = form.findChild<QPlainTextEdit *>(QString::fromLatin1(name));
        return u"%1 %2"_s.arg(box->toPlainText().size()).arg(box->lineWrapMode());
    };
    for (const auto &[text, told] :
         {std::pair<QString, QString>(QString(5000, u'a') + u' ' + QString(5000, u'a'), u"10001 1"_s),
          std::pair<QString, QString>(QString(5001, u'a') + u" a"_s, u"5003 0"_s)})
        QCOMPARE(
            shown(frmSendMail(&m_window, m_settings, m_messages, text, Wait(), frmSendMail::MakeMail()), "txtContent"),
            told);
    const TemporaryDataDirectory data;
    data.write(u"f.xml"_s, "<rss version=\"2.0\"><channel><title>t</title><description>" + "a "_ba.repeated(40000) +
                               "</description></channel></rss>");
    const auto feed = std::make_shared<CachedFeed>();
    QCOMPARE(feed->Load(data.file(u"f.xml"_s)), LoadOk);
    frmProprietes form(&m_window, {feed, true, {}, [] { return FeedNodePtr(); }, m_tables, m_cipher});
    QVERIFY(form.fillFrom()); // read only: no more of it than a box can be asked to show
    QCOMPARE(shown(form, "txtDescription"), u"65535 1"_s);
}

QTEST_MAIN(DialogLayoutTest)
#include "tst_DialogLayout.moc"
