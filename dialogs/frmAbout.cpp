// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/frmAbout.h"

#include "dialogs/DialogParts.h"
#include "dialogs/LinkButton.h"
#include "dialogs/MakerSite.h"
#include "platform/Build.h"
#include "platform/Literals.h"

#include <QBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPainter>
#include <QPlainTextEdit>

namespace {

/// A row of dots between the parts of the box.
class DotRow final : public QWidget
{
public:
    explicit DotRow(const QString &name)
    {
        setObjectName(name);
        setFixedHeight(5);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        constexpr double radius = 1.25; // pixels
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(palette().color(QPalette::PlaceholderText));
        for (double x = radius; x + radius <= width(); x += 4 * radius)
            painter.drawEllipse(QPointF(x, height() / 2.0), radius, radius);
    }
};

QString credits()
{
    return u"Quillwire s'appuie sur ces composants :\n\n"
           "Qt 6 et Qt WebEngine : The Qt Company et les contributeurs du projet Qt (LGPL 3)\n"
           "Chromium, dans Qt WebEngine : The Chromium Authors (BSD)\n"
           "libxml2 : Daniel Veillard et contributeurs (MIT)\n"
           "libcurl : Daniel Stenberg et contributeurs (licence curl)\n"
           "SQLite, pour l'aide : domaine public\n\n"
           "Remercions également ces personnes pour leur contribution au bon développement du programme :\n\n"
           "celles et ceux qui ont essayé les versions successives, signalé leurs défauts et proposé des "
           "améliorations.\n\n"
           "Copyright \u00a9 Tovik. Les marques citées sont celles de leurs propriétaires."_s;
}

QLabel *text(const QString &name, const QString &caption, double scale, bool bold)
{
    auto *label = DialogParts::named(new QLabel(caption), name);
    label->setTextFormat(Qt::PlainText);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * scale);
    font.setBold(bold);
    label->setFont(font);
    return label;
}

} // namespace

frmAbout::frmAbout(QWidget *owner, const OpenInSystemBrowser &openInSystemBrowser) : DialogBase(u"À propos"_s, owner)
{
    auto *content = new QWidget;
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);

    auto *banner = new QHBoxLayout;
    auto *imgIcon = DialogParts::named(new QLabel, u"imgIcon"_s);
    const int side = fontMetrics().height() * 4;
    imgIcon->setPixmap(QIcon(u":/icons/quillwire.svg"_s).pixmap(QSize(side, side), devicePixelRatio()));
    banner->addWidget(imgIcon);
    auto *names = new QVBoxLayout;
    auto *product = new QHBoxLayout;
    product->addWidget(text(u"lblInfo_0"_s, u"Quillwire"_s, 2.0, true));
    product->addWidget(text(u"lblInfo_1"_s, u'v' + Build::shortVersion, 1.2, false), 0, Qt::AlignBottom);
    product->addStretch();
    names->addLayout(product);
    names->addWidget(text(u"lblTitle"_s, u"Tovik"_s, 1.2, false));
    banner->addLayout(names, 1);
    column->addLayout(banner);

    column->addWidget(new DotRow(u"lblDescription"_s));
    column->addWidget(text(u"lblVersion"_s, u"Version: "_s + Build::version, 1.0, false));

    const auto addLink = [&](const QString &name, const QString &caption, const QString &url) {
        auto *link = DialogParts::named(new LinkButton(caption), name);
        column->addWidget(link);
        connect(link, &LinkButton::clicked, this, [openInSystemBrowser, url] { openInSystemBrowser(url); });
    };
    addLink(u"lblProduct"_s, u"Page web de Quillwire"_s, MakerSite::page(u"prog/Quillwire/"_s));
    // Not this program's version but the one that the site's page is asked for by;
    // the steps of frmAbout hold it.
    addLink(u"lblVersionUpdate"_s, u"Information de mise à jour"_s,
            MakerSite::page(u"prog/Quillwire/update.php?version=3.0.4"_s));
    addLink(u"lblURL"_s, MakerSite::root(), MakerSite::root());

    column->addWidget(new DotRow(u"lblDotLine"_s));
    auto *txtSpecialCopyright = DialogParts::textBox(u"txtSpecialCopyright"_s);
    txtSpecialCopyright->setReadOnly(true);
    txtSpecialCopyright->setAccessibleName(u"Remerciements"_s);
    txtSpecialCopyright->setPlainText(credits());
    txtSpecialCopyright->setMinimumSize(fontMetrics().averageCharWidth() * 60, fontMetrics().lineSpacing() * 8);
    column->addWidget(txtSpecialCopyright);

    auto *cmdOK = DialogParts::button(u"cmdOK"_s, u"OK"_s);
    DialogParts::layOut(*this, content, DialogParts::buttonRow({cmdOK}));
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    cmdOK->setDefault(true);
    cmdOK->setFocus();
    // Escape closes a dialog too: the button is default and cancel button at once.
    connect(cmdOK, &QPushButton::clicked, this, &frmAbout::accept);
}
