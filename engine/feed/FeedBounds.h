// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/Latin1Entities.h"
#include "platform/xml/XmlGate.h"

/// What is borne with in a feed. Its tree is searched by namespace name and written back, so names must be sound; the
/// entities that its document type may declare elsewhere are known or an error.
inline constexpr XmlBounds feedBounds{
    .knownEntity = Latin1Entities::find, .parameterReferences = 1000, .parameterText = 1000000};
