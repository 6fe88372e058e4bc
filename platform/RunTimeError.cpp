#include "platform/RunTimeError.h"

RunTimeError::RunTimeError(qint32 number, QString text)
    : m_number(number), m_text(std::move(text)), m_what(message().toUtf8())
{}

QString RunTimeError::message() const
{
    return QStringLiteral("Erreur d'exécution '%1':\n\n%2").arg(m_number).arg(m_text);
}

RunTimeError RunTimeError::invalidCall()
{
    return {5, QStringLiteral("Argument ou appel de procédure incorrect")};
}

RunTimeError RunTimeError::overflow()
{
    return {6, QStringLiteral("Dépassement de capacité")};
}

RunTimeError RunTimeError::typeMismatch()
{
    return {13, QStringLiteral("Incompatibilité de type")};
}

RunTimeError RunTimeError::fileNotFound()
{
    return {53, QStringLiteral("Fichier introuvable")};
}

RunTimeError RunTimeError::deviceError()
{
    return {57, QStringLiteral("Erreur d'entrée/sortie de périphérique")};
}

RunTimeError RunTimeError::diskFull()
{
    return {61, QStringLiteral("Disque plein")};
}

RunTimeError RunTimeError::permissionDenied()
{
    return {70, QStringLiteral("Permission refusée")};
}

RunTimeError RunTimeError::pathNotFound()
{
    return {76, QStringLiteral("Chemin d'accès introuvable")};
}

RunTimeError RunTimeError::objectNotSet()
{
    return {91, QStringLiteral("Variable objet ou variable de bloc With non définie")};
}

RunTimeError RunTimeError::invalidProperty()
{
    return {380, QStringLiteral("Valeur de propriété incorrecte")};
}

RunTimeError RunTimeError::keyInUse()
{
    return {457, QStringLiteral("Cette clé est déjà associée à un élément de cette collection")};
}

RunTimeError RunTimeError::elementNotFound()
{
    return {35601, QStringLiteral("Élément introuvable")};
}

RunTimeError RunTimeError::keyNotUnique()
{
    return {35602, QStringLiteral("La clé n'est pas unique dans la collection")};
}
