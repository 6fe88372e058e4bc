// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

/// How far an SMTP server is followed.
struct SmtpLimits
{
    int connectMs = 30000; ///< until the server's address is found and the connection stands
    int idleMs = 60000;    ///< between two signs of life of the server
    int totalMs = 300000;  ///< the whole attempt
};
