// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/RunTimeError.h"

#include "platform/Literals.h"

RunTimeError::RunTimeError(qint32 number, QString text)
    : m_number(number), m_text(std::move(text)), m_what(message().toUtf8())
{}

QString RunTimeError::message() const
{
    return u"Erreur d'exécution '%1':\n\n%2"_s.arg(m_number).arg(m_text);
}

RunTimeError RunTimeError::invalidCall()
{
    return {5, u"Argument ou appel de procédure incorrect"_s};
}

RunTimeError RunTimeError::overflow()
{
    return {6, u"Dépassement de capacité"_s};
}

RunTimeError RunTimeError::typeMismatch()
{
    return {13, u"Incompatibilité de type"_s};
}

RunTimeError RunTimeError::fileNotFound()
{
    return {53, u"Fichier introuvable"_s};
}

RunTimeError RunTimeError::deviceError()
{
    return {57, u"Erreur d'entrée/sortie de périphérique"_s};
}

RunTimeError RunTimeError::diskFull()
{
    return {61, u"Disque plein"_s};
}

RunTimeError RunTimeError::permissionDenied()
{
    return {70, u"Permission refusée"_s};
}

RunTimeError RunTimeError::pathNotFound()
{
    return {76, u"Chemin d'accès introuvable"_s};
}

RunTimeError RunTimeError::objectNotSet()
{
    return {91, u"Variable objet ou variable de bloc With non définie"_s};
}

RunTimeError RunTimeError::invalidProperty()
{
    return {380, u"Valeur de propriété incorrecte"_s};
}

RunTimeError RunTimeError::keyInUse()
{
    return {457, u"Cette clé est déjà associée à un élément de cette collection"_s};
}

RunTimeError RunTimeError::elementNotFound()
{
    return {35601, u"Élément introuvable"_s};
}

RunTimeError RunTimeError::keyNotUnique()
{
    return {35602, u"La clé n'est pas unique dans la collection"_s};
}
