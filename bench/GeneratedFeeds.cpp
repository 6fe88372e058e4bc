// SPDX-License-Identifier: GPL-3.0-or-later

#include "bench/GeneratedFeeds.h"

#include <QString> // with it come the operators of QByteArray

#include <array>

namespace {

constexpr std::array<const char *, 12> sentences = {"Le conseil s'est réuni tard dans la soirée, sans rien décider. ",
                                                    "Une lumière est restée allumée au dernier étage. ",
                                                    "On attend la pluie pour jeudi, et le vent avec elle. ",
                                                    "Les abonnés recevront le numéro d'été par la poste. ",
                                                    "Personne n'avait vu le chat depuis trois jours. ",
                                                    "La lecture publique commencera à dix-neuf heures. ",
                                                    "Il faudra réserver, car les places sont comptées. ",
                                                    "Le pont restera fermé jusqu'à la fin du mois. ",
                                                    "Deux trains sur trois circuleront ce matin. ",
                                                    "Le musée prête ses cartes à qui veut les recopier. ",
                                                    "C'est la première fois qu'un tel prix lui est remis. ",
                                                    "Rien ne presse, disent ceux qui ne marchent pas. "};

QByteArray number(int i)
{
    return QByteArray::number(i);
}

QByteArray link(int i)
{
    return "http://exemple.example.org/articles/2004/07/" + number(i) + ".html";
}

QByteArray date(int i)
{
    return "2004-07-" + number(1 + i % 28).rightJustified(2, '0') + 'T' + number(i % 24).rightJustified(2, '0') +
           ":30:00+02:00";
}

/// About a kilobyte of markup, escaped.
QByteArray markup(int i)
{
    QByteArray text;
    for (int paragraph = 0; paragraph < 3; ++paragraph) {
        text += "&lt;p&gt;";
        for (int sentence = 0; sentence < 5; ++sentence)
            text += sentences[static_cast<std::size_t>(i + paragraph * 5 + sentence * 7) % sentences.size()];
        text += "&lt;a href=\"" + link(i + paragraph) + "\"&gt;La suite&lt;/a&gt;&lt;/p&gt;\n";
    }
    return text;
}

QByteArray document(const QByteArray &head, const QByteArray &tail, int items, QByteArray (*item)(int))
{
    QByteArray bytes = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + head;
    bytes.reserve(bytes.size() + items * 1700);
    for (int i = 0; i < items; ++i)
        bytes += item(i);
    return bytes + tail;
}

QByteArray rssItem(int i)
{
    return "    <item>\n      <title>Article numéro " + number(i) + " d'une longue série</title>\n      <link>" +
           link(i) + "</link>\n      <description>" + markup(i) +
           "</description>\n      <author>auteur@example.org (Auteur)</author>\n      <category>Ville</category>\n"
           "      <category>Culture</category>\n      <comments>" +
           link(i) + "#avis</comments>\n      <guid>" + link(i) + "</guid>\n      <pubDate>Thu, " +
           number(1 + i % 28).rightJustified(2, '0') + " Jul 2004 10:30:00 +0200</pubDate>\n    </item>\n";
}

QByteArray rdfItem(int i)
{
    return "  <item rdf:about=\"" + link(i) + "\">\n    <title>Article numéro " + number(i) +
           " d'une longue série</title>\n    <link>" + link(i) + "</link>\n    <description>" + markup(i) +
           "</description>\n    <dc:creator>Auteur</dc:creator>\n    <dc:subject>Ville</dc:subject>\n"
           "    <dc:subject>Culture</dc:subject>\n    <dc:date>" +
           date(i) + "</dc:date>\n  </item>\n";
}

QByteArray atomEntry(int i)
{
    return "  <entry>\n    <title>Article numéro " + number(i) +
           " d'une longue série</title>\n    <link rel=\"alternate\" type=\"text/html\" href=\"" + link(i) +
           "\"/>\n    <id>" + link(i) + "</id>\n    <author><name>Auteur</name></author>\n    <issued>" + date(i) +
           "</issued>\n    <modified>" + date(i) +
           "</modified>\n    <dc:subject>Ville</dc:subject>\n    <content type=\"text/html\" mode=\"escaped\">" +
           markup(i) + "</content>\n  </entry>\n";
}

} // namespace

QByteArray GeneratedFeeds::rss20(int items)
{
    return document("<rss version=\"2.0\">\n  <channel>\n    <title>T</title>\n    <link>http://example.org/</link>\n",
                    "  </channel>\n</rss>\n", items, rssItem);
}

QByteArray GeneratedFeeds::rdf10(int items)
{
    QByteArray head = "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\" "
                      "xmlns=\"http://purl.org/rss/1.0/\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\">\n"
                      "  <channel rdf:about=\"http://example.org/\">\n    <title>T</title>\n    <items><rdf:Seq>\n";
    for (int i = 0; i < items; ++i)
        head += "      <rdf:li rdf:resource=\"" + link(i) + "\"/>\n";
    return document(head + "    </rdf:Seq></items>\n  </channel>\n", "</rdf:RDF>\n", items, rdfItem);
}

QByteArray GeneratedFeeds::atom03(int items)
{
    return document("<feed version=\"0.3\" xmlns=\"http://purl.org/atom/ns#\" "
                    "xmlns:dc=\"http://purl.org/dc/elements/1.1/\">\n  <title>T</title>\n",
                    "</feed>\n", items, atomEntry);
}
