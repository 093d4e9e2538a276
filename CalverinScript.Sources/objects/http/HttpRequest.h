#pragma once

#include <QNetworkRequest>
#include <QString>

/// @file
/// From a script's texts to a request. Texts become Latin-1 on the way; characters beyond it become "?". Pure
/// functions, callable on any thread.

/// The encoding number that says that names and values of items are percent-encoded already.
inline constexpr int kItemsAreEncoded = 1;

/// Makes a request.
/// @param headers a header list; lines without ":" are left out.
/// @param items `name=value` pairs joined with "&", added to the query of the address; a pair without "=" is left out.
/// @param itemsEncoding kItemsAreEncoded, or anything else when names and values are plain text.
QNetworkRequest MakeHttpRequest(const QString& address, const QString& headers, const QString& items,
                                int itemsEncoding);

/// Whether a request may go out: only http and https do. The manager underneath also serves files of this computer and
/// addresses that hold their own content, which no script may reach by this road.
bool IsHttpAddress(const QUrl& url);
