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
#include "tests/fixtures/FakeDownloader.h"
#include "tests/fixtures/FakeMessages.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QStackedLayout>
#include <QTabWidget>
#include <QTest>

namespace {

constexpr const char *dialogNames[] = {"frmImport",  "frmExport",   "frmRechercher",       "frmProprietes",
                                       "frmOptions", "frmSendMail", "frmAuthentification", "frmAbout"};

} // namespace

/// What holds for the looks of every dialog.
class DialogLayoutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void noTextIsCut_data();
    void noTextIsCut();
    void buttonsKeepToTheCorner_data();
    void buttonsKeepToTheCorner();
    void optionFramesAre200TwipsNarrowerThanTheirPage();
    void everyControlHasANameForScreenReaders();

private:
    std::unique_ptr<QDialog> make(const QString &name);
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

/// Every label and button on show has the room that it asks for, and lies within its dialog.
void DialogLayoutTest::checkTexts(const QWidget &dialog) const
{
    for (const QWidget *const widget : dialog.findChildren<QWidget *>()) {
        const bool bearsText = qobject_cast<const QAbstractButton *>(widget) ||
                               qobject_cast<const QComboBox *>(widget) || qobject_cast<const QLabel *>(widget) ||
                               qobject_cast<const QGroupBox *>(widget) || qobject_cast<const QTabBar *>(widget) ||
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

void DialogLayoutTest::buttonsKeepToTheCorner_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("corner");
    QTest::addColumn<QString>("beside");
    const auto row = [](const char *name, const char *corner, const char *beside) {
        QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(corner) << QString::fromLatin1(beside);
    };
    row("frmImport", "cmdAnnuler", "cmdSuivant");
    row("frmRechercher", "cmdAnnuler", "cmdRechercher");
    row("frmProprietes", "cmdFermer", "cmdAppliquer");
    row("frmOptions", "cmdFermer", "cmdAppliquer");
    row("frmSendMail", "cmdAnnuler", "cmdEnvoyer");
}

void DialogLayoutTest::buttonsKeepToTheCorner()
{
    QFETCH(QString, name);
    QFETCH(QString, corner);
    QFETCH(QString, beside);
    const std::unique_ptr<QDialog> dialog = make(name);
    dialog->show();
    const auto *const last = dialog->findChild<QWidget *>(corner);
    const auto *const first = dialog->findChild<QWidget *>(beside);
    for (const QSize &size : {QSize(1000, 800), QSize(1, 1), QSize(700, 500)}) {
        dialog->resize(size);
        QApplication::processEvents();
        QCOMPARE(dialog->rect().bottomRight() - last->geometry().bottomRight(), QPoint(10, 10));
        QCOMPARE(last->x() - first->geometry().right() - 1, 10);
        QVERIFY(dialog->width() >= first->width() + last->width() + 30);
    }
}

void DialogLayoutTest::optionFramesAre200TwipsNarrowerThanTheirPage()
{
    const std::unique_ptr<QDialog> dialog = make(u"frmRechercher"_s);
    dialog->show();
    dialog->resize(700, 500);
    QApplication::processEvents();
    const auto *const frame = dialog->findChild<QWidget *>(u"fraOptionsFeedster"_s);
    const double twips = (frame->parentWidget()->width() - frame->width()) * 1440.0 / dialog->logicalDpiX();
    QVERIFY2(std::abs(twips - 200) < 20, qPrintable(QString::number(twips)));
}

void DialogLayoutTest::everyControlHasANameForScreenReaders()
{
    for (const char *const name : dialogNames) {
        const std::unique_ptr<QDialog> dialog = make(QString::fromLatin1(name));
        for (QWidget *const widget : dialog->findChildren<QWidget *>()) {
            if (!(widget->focusPolicy() & Qt::TabFocus) || widget->objectName().startsWith(u"qt_"_s) ||
                qobject_cast<QTabBar *>(widget) || qobject_cast<QTabWidget *>(widget) || widget->focusProxy())
                continue;
            const QAccessibleInterface *const accessible = QAccessible::queryAccessibleInterface(widget);
            QVERIFY2(accessible && !accessible->text(QAccessible::Name).isEmpty(),
                     qPrintable(QString::fromLatin1(name) + u' ' + widget->objectName()));
        }
    }
}

QTEST_MAIN(DialogLayoutTest)
#include "tst_DialogLayout.moc"
