// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWebEngineUrlRequestInterceptor>

/// Lets pages load what comes from the web, what they made themselves and the private scheme; not resources of the
/// program or of the engine, which any page could load otherwise, and no file into another page.
class RequestGuard final : public QWebEngineUrlRequestInterceptor
{
    Q_OBJECT

public:
    using QWebEngineUrlRequestInterceptor::QWebEngineUrlRequestInterceptor;

    void interceptRequest(QWebEngineUrlRequestInfo &info) override;
};
