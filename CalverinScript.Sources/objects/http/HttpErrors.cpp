#include "HttpErrors.h"

#include <algorithm>
#include <iterator>

namespace {

struct ErrorText {
    int code;
    const char* text;
};

constexpr ErrorText kErrorTexts[] = {
    {1, "the remote server refused the connection (the server is not accepting requests)"},
    {2, "the remote server closed the connection prematurely, before the entire reply was received and processed"},
    {3, "the remote host name was not found (invalid hostname)"},
    {4, "the connection to the remote server timed out"},
    {5, "the operation was canceled via calls to abort() or close() before it was finished."},
    {6,
     "the SSL/TLS handshake failed and the encrypted channel could not be established. The sslErrors() signal should "
     "have been emitted."},
    {7, "the connection was broken due to disconnection from the network, however the system has initiated roaming to "
        "another access point. The request should be resubmitted and will be processed as soon as the connection is "
        "re-established."},
    {kHttpWrongPath, "wrong file path"},
    {kHttpFileRefused, "File cannot be created"},
    {99, "an unknown network-related error was detected"},
    {101, "the connection to the proxy server was refused (the proxy server is not accepting requests)"},
    {102, "the proxy server closed the connection prematurely, before the entire reply was received and processed"},
    {103, "the proxy host name was not found (invalid proxy hostname)"},
    {104, "the connection to the proxy timed out or the proxy did not reply in time to the request sent"},
    {105, "the proxy requires authentication in order to honour the request but did not accept any credentials offered "
          "(if any)"},
    {199, "an unknown proxy-related error was detected"},
    {201, "the access to the remote content was denied (similar to HTTP error 401)"},
    {202, "the operation requested on the remote content is not permitted"},
    {203, "the remote content was not found at the server (similar to HTTP error 404)"},
    {204, "the remote server requires authentication to serve the content but the credentials provided were not "
          "accepted (if any)"},
    {205,
     "the request needed to be sent again, but this failed for example because the upload data could not be read a "
     "second time."},
    {299, "an unknown error related to the remote content was detected"},
    {301, "the Network Access API cannot honor the request because the protocol is not known"},
    {302, "the requested operation is invalid for this protocol"},
    {399, "a breakdown in protocol was detected (parsing error, invalid or unexpected responses, etc.)"}};

constexpr bool IsAscending() {
    for (std::size_t i = 1; i < std::size(kErrorTexts); ++i)
        if (kErrorTexts[i - 1].code >= kErrorTexts[i].code)
            return false;
    return true;
}
static_assert(std::size(kErrorTexts) == 25 && IsAscending());

struct NewerError {
    QNetworkReply::NetworkError error;
    int code;
};

/// Kinds of errors that were part of a general one when scripts learned the numbers.
constexpr NewerError kNewerErrors[] = {{QNetworkReply::NetworkSessionFailedError, kHttpUnknownNetworkError},
                                       {QNetworkReply::BackgroundRequestNotAllowedError, kHttpUnknownNetworkError},
                                       {QNetworkReply::TooManyRedirectsError, kHttpUnknownNetworkError},
                                       {QNetworkReply::InsecureRedirectError, kHttpUnknownNetworkError},
                                       {QNetworkReply::ContentConflictError, kHttpUnknownContentError},
                                       {QNetworkReply::ContentGoneError, kHttpUnknownContentError},
                                       {QNetworkReply::InternalServerError, kHttpUnknownContentError},
                                       {QNetworkReply::OperationNotImplementedError, kHttpUnknownContentError},
                                       {QNetworkReply::ServiceUnavailableError, kHttpUnknownContentError},
                                       {QNetworkReply::UnknownServerError, kHttpUnknownContentError}};

} // namespace

const char* HttpErrorText(int code) {
    const auto* row = std::lower_bound(std::begin(kErrorTexts), std::end(kErrorTexts), code,
                                       [](const ErrorText& r, int wanted) { return r.code < wanted; });
    return row != std::end(kErrorTexts) && row->code == code ? row->text : "Undefined error";
}

int HttpErrorNumber(QNetworkReply::NetworkError error) {
    const auto* row = std::find_if(std::begin(kNewerErrors), std::end(kNewerErrors),
                                   [&](const NewerError& r) { return r.error == error; });
    return row != std::end(kNewerErrors) ? row->code : static_cast<int>(error);
}
