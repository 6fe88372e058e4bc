// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

/// True when a network connection exists: an interface other than the loopback is up and has an address that reaches
/// beyond its own link. No host is asked for this, so that it is quick and can say yes without the Internet.
bool isConnected();
