// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/xml/UndeclaredPrefixes.h"

#include "platform/xml/DocumentNotes.h"
#include "platform/xml/TreeWalk.h"
#include "platform/xml/XmlLimits.h"

#include <QHash>
#include <QString> // with it come the operators of QByteArray

namespace {

class Binder final
{
public:
    explicit Binder(xmlDoc *document) : m_document(document), m_root(xmlDocGetRootElement(document)) {}

    bool bindAll()
    {
        for (xmlNode *node = m_root; node != nullptr && !m_failed; node = nextInTree(node, m_root)) {
            if (node->type != XML_ELEMENT_NODE)
                continue;
            bind(node->name, node->ns);
            for (xmlAttr *attribute = node->properties; attribute != nullptr && !m_failed;)
                attribute = bindAttribute(node, attribute);
        }
        return !m_failed;
    }

private:
    /// The attribute after it. One that says what another says, whose prefix is declared as ours will be, goes.
    xmlAttr *bindAttribute(xmlNode *element, xmlAttr *attribute)
    {
        xmlAttr *next = attribute->next;
        if (bind(attribute->name, attribute->ns))
            for (const xmlAttr *other = element->properties; other != nullptr; other = other->next)
                if (other != attribute && other->ns != nullptr && xmlStrEqual(other->name, attribute->name) != 0 &&
                    xmlStrEqual(other->ns->href, attribute->ns->href) != 0) {
                    xmlRemoveProp(attribute);
                    break;
                }
        return next;
    }

    /// True when the name had such a prefix, and now has a namespace.
    bool bind(const xmlChar *&name, xmlNs *&ns)
    {
        const xmlChar *colon = ns == nullptr ? xmlStrchr(name, ':') : nullptr;
        xmlNs *found = colon == nullptr ? nullptr : namespaceOf({reinterpret_cast<const char *>(name), colon - name});
        if (found == nullptr)
            return false;
        const xmlChar *local = xmlDictLookup(m_document->dict, colon + 1, -1);
        if (xmlDictOwns(m_document->dict, name) == 0)
            xmlFree(const_cast<xmlChar *>(name));
        name = local;
        ns = found;
        return true;
    }

    /// Null when the prefix can't be declared.
    xmlNs *namespaceOf(const QByteArray &prefix)
    {
        if (prefix == "xmlns")
            return nullptr; // never to be declared, so it gets no meaning
        xmlNs *&ns = m_namespaces[prefix];
        if (ns == nullptr) {
            DocumentNotes &notes = DocumentNotes::of(*m_document);
            m_failed = ++notes.declarations > XmlLimits::declarations || prefix.size() > XmlLimits::prefix;
            notes.mustBeTried = true;
            if (!m_failed)
                ns = xmlNewNs(m_root, text("urn:quillwire:undeclared:" + prefix), text(prefix));
        }
        return ns;
    }

    static const xmlChar *text(const QByteArray &bytes) { return reinterpret_cast<const xmlChar *>(bytes.constData()); }

    xmlDoc *m_document;
    xmlNode *m_root;
    QHash<QByteArray, xmlNs *> m_namespaces;
    bool m_failed = false;
};

} // namespace

bool UndeclaredPrefixes::bind(xmlDoc *document)
{
    return Binder(document).bindAll();
}
