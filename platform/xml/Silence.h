// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <libxml/xmlerror.h>

/// Keeps the library from writing to the error stream what it thinks of a document, for the life of the object.
class Silence final
{
public:
    Silence() { xmlSetGenericErrorFunc(nullptr, sayNothing); }
    Silence(const Silence &) = delete;
    Silence &operator=(const Silence &) = delete;
    ~Silence() { xmlSetGenericErrorFunc(m_context, m_function); }

private:
    static void sayNothing(void *, const char *, ...) {}

    void *m_context = xmlGenericErrorContext;
    xmlGenericErrorFunc m_function = xmlGenericError;
};
