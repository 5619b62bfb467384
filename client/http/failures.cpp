#include "client/http/failures.h"

#include "client/Failure.h"

namespace Efictl {

namespace {

// OpenSSL's X509_V_ERR_ numbers.
enum CertificateError : long {
    NOT_YET_VALID = 9,
    EXPIRED = 10,
    OTHER_HOST = 62,
    OTHER_ADDRESS = 64
};

// Returns true if a request with this error was never sent.
bool wasNotSent(CURLcode error) {
    switch (error) {
        case CURLE_UNSUPPORTED_PROTOCOL:
        case CURLE_URL_MALFORMAT:
        case CURLE_COULDNT_RESOLVE_PROXY:
        case CURLE_COULDNT_RESOLVE_HOST:
        case CURLE_COULDNT_CONNECT:
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_SSL_CACERT_BADFILE:
            return true;
        default:
            return false;
    }
}

std::string describeCertificate(const LostRequest& request, const std::string& board) {
    const std::string start = "The certificate of " + board;
    switch (request.certificateError) {
        case EXPIRED:
            return start + " has expired. Renew it on the board.";
        case NOT_YET_VALID:
            return start + " is not valid yet. Check the clocks of this machine and of the board.";
        case OTHER_HOST:
        case OTHER_ADDRESS:
            return start + " is for another name. Use the name in the certificate.";
        default:
            break;
    }
    if (request.reason.find("subject name") != std::string::npos ||
        request.reason.find("no alternative") != std::string::npos) {
        return start + " is for another name. Use the name in the certificate.";
    }
    return start + " is not trusted (" + request.reason +
           "). Give the certificate or that of its issuer with --cacert.";
}

std::string describe(const LostRequest& request, const std::string& board) {
    switch (request.error) {
        case CURLE_COULDNT_RESOLVE_HOST:
            return "The host name in " + board + " is unknown.";
        case CURLE_COULDNT_CONNECT:
            return "No board answers at " + board + ": the connection failed.";
        case CURLE_OPERATION_TIMEDOUT:
            return request.hurried ? board + " did not answer within --timeout."
                                   : board + " did not answer in time.";
        case CURLE_SSL_CACERT_BADFILE:
            return "The file of --cacert cannot be read or contains no certificate.";
        case CURLE_PEER_FAILED_VERIFICATION:
            return describeCertificate(request, board);
        case CURLE_SSL_CONNECT_ERROR:
            return "The TLS connection to " + board + " failed (" + request.reason + ").";
        default:
            return "The connection to " + board + " broke" +
                   (request.reason.empty() ? "." : " (" + request.reason + ").");
    }
}

}  // namespace

void throwLostRequest(const LostRequest& request, const std::string& board) {
    const std::string text =
        request.tooLarge ? "The response of " + board + " is larger than any response of a board."
                         : describe(request, board);
    const bool mayHaveArrived = !wasNotSent(request.error);
    if (request.effect == Effect::CHANGES && mayHaveArrived) {
        throw Failure(ExitCode::UNKNOWN,
                      text + " It is not known whether the request was carried out.");
    }
    if (request.error == CURLE_SSL_CACERT_BADFILE) {
        throw Failure(ExitCode::FAILED, text);
    }
    const bool isFinal = (request.effect != Effect::NONE && mayHaveArrived) || request.tooLarge ||
                         request.hurried || request.error == CURLE_PEER_FAILED_VERIFICATION ||
                         request.error == CURLE_COULDNT_RESOLVE_HOST ||
                         request.error == CURLE_SSL_CONNECT_ERROR ||
                         request.error == CURLE_UNSUPPORTED_PROTOCOL;
    if (isFinal) {
        throw Failure(ExitCode::UNREACHABLE, text);
    }
    throw PassingFailure(ExitCode::UNREACHABLE, text, PassingFailure::Cause::CONNECTION);
}

}  // namespace Efictl
