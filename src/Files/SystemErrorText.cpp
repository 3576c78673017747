// SPDX-License-Identifier: MIT
#include "SystemErrorText.h"

#include <cerrno>

using namespace Qt::Literals::StringLiterals;

/// The words are those of the C library, which are in the language of the system and not in that of
/// the interface.
QString systemErrorText(int systemError)
{
    switch (systemError) {
    case E2BIG:
        return u"Argument list too long"_s;
    case ENOMEM:
        return u"Cannot allocate memory"_s;
    case EBUSY:
        return u"Device or resource busy"_s;
    case EINVAL:
        return u"Invalid argument"_s;
    case ELOOP:
        return u"Too many levels of symbolic links"_s;
    case ENOTDIR:
        return u"Not a directory"_s;
    case EISDIR:
        return u"Is a directory"_s;
    case EEXIST:
        return u"File exists"_s;
    case ENOTEMPTY:
        return u"Directory not empty"_s;
    case EXDEV:
        return u"Invalid cross-device link"_s;
    case EMLINK:
        return u"Too many links"_s;
    case ENXIO:
        return u"No such device or address"_s;
    case ENODEV:
        return u"No such device"_s;
    case ETXTBSY:
        return u"Text file busy"_s;
    case EAGAIN:
        return u"Resource temporarily unavailable"_s;
    case EINTR:
        return u"Interrupted system call"_s;
    case EBADF:
        return u"Bad file descriptor"_s;
    case ENOSYS:
        return u"Function not implemented"_s;
    case EOPNOTSUPP:
        return u"Operation not supported"_s;
    case EOVERFLOW:
        return u"Value too large for defined data type"_s;
    case ENOLCK:
        return u"No locks available"_s;
    case EDEADLK:
        return u"Resource deadlock avoided"_s;
    case ESTALE:
        return u"Stale file handle"_s;
    case EPIPE:
        return u"Broken pipe"_s;
    case ENODATA:
        return u"No data available"_s;
    case EPROTO:
        return u"Protocol error"_s;
    case EILSEQ:
        return u"Invalid or incomplete multibyte or wide character"_s;
    case ETIMEDOUT:
        return u"Connection timed out"_s;
    case ENOTCONN:
        return u"Transport endpoint is not connected"_s;
    case ECONNREFUSED:
        return u"Connection refused"_s;
    case ECONNRESET:
        return u"Connection reset by peer"_s;
    case ECONNABORTED:
        return u"Software caused connection abort"_s;
    case ESHUTDOWN:
        return u"Cannot send after transport endpoint shutdown"_s;
    case EHOSTDOWN:
        return u"Host is down"_s;
    case EHOSTUNREACH:
        return u"No route to host"_s;
    case ENETDOWN:
        return u"Network is down"_s;
    case ENETUNREACH:
        return u"Network is unreachable"_s;
    case EREMOTEIO:
        return u"Remote I/O error"_s;
    case EUCLEAN:
        return u"Structure needs cleaning"_s;
    case ENOMEDIUM:
        return u"No medium found"_s;
    case EMEDIUMTYPE:
        return u"Wrong medium type"_s;
    case ENOKEY:
        return u"Required key not available"_s;
    case EKEYEXPIRED:
        return u"Key has expired"_s;
    case EKEYREVOKED:
        return u"Key has been revoked"_s;
    case EKEYREJECTED:
        return u"Key was rejected by service"_s;
    default:
        return {};
    }
}
