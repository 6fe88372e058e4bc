// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/FrenchTexts.h"

#include "platform/Literals.h"

#include <QCoreApplication>
#include <QHash>
#include <QLibraryInfo>
#include <QLocale>

namespace {

/// By the library's own text. Nobody else has written a French file for the browser engine.
const QHash<QByteArray, QString> &gaps()
{
    static const QHash<QByteArray, QString> table = {
        {"Back", u"Précédent"_s},
        {"Forward", u"Suivant"_s},
        {"Reload", u"Actualiser"_s},
        {"Stop", u"Arrêter"_s},
        {"Undo", u"Annuler"_s},
        {"Redo", u"Rétablir"_s},
        {"Cut", u"Couper"_s},
        {"Copy", u"Copier"_s},
        {"Paste", u"Coller"_s},
        {"Paste and match style", u"Coller sans mise en forme"_s},
        {"Select all", u"Tout sélectionner"_s},
        {"Unselect", u"Ne rien sélectionner"_s},
        {"Open link in new window", u"Ouvrir le lien dans une nouvelle fenêtre"_s},
        {"Open link in this window", u"Ouvrir le lien dans cette fenêtre"_s},
        {"Copy link address", u"Copier l'adresse du lien"_s},
        {"Save link", u"Enregistrer la cible du lien..."_s},
        {"Copy image", u"Copier l'image"_s},
        {"Copy image address", u"Copier l'adresse de l'image"_s},
        {"Save image", u"Enregistrer l'image..."_s},
        {"Copy media address", u"Copier l'adresse du média"_s},
        {"Save media", u"Enregistrer le média..."_s},
        {"Show controls", u"Montrer les commandes"_s},
        {"Loop", u"Lire en boucle"_s},
        {"Toggle Play/Pause", u"Lecture / pause"_s},
        {"Toggle Mute", u"Couper / remettre le son"_s},
        {"Exit full screen", u"Quitter le plein écran"_s},
        {"Save page", u"Enregistrer la page..."_s},
        {"Accepted types (%1)", u"Types acceptés (%1)"_s},
        {"Select folder to upload", u"Choisir le dossier à envoyer"_s},
        {"Drive", u"Lecteur"_s},
        {"Folder", u"Dossier"_s},
        {"%1 File", u"Fichier %1"_s},
        {"Unknown", u"Inconnu"_s},
    };
    return table;
}

} // namespace

void FrenchTexts::install(QCoreApplication &application)
{
    if (QLocale().language() != QLocale::French)
        QLocale::setDefault(QLocale(QLocale::French, QLocale::France));
    // The one installed last is asked first.
    QCoreApplication::installTranslator(new FrenchTexts(&application));
    auto *library = new QTranslator(&application);
    if (library->load(u"qtbase_fr"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(library);
}

QString FrenchTexts::translate(const char *, const char *sourceText, const char *, int) const
{
    return gaps().value(sourceText);
}
