#include "Offload/OffloadError.h"

#include "Scan/Format.h"

namespace Quillbrook {

using namespace Qt::StringLiterals;

QString OffloadError::description() const
{
    switch (kind) {
    case Kind::notEnoughRoom:
        return u"Needs %1, only %2 free."_s.arg(Format::bytes(needed), Format::bytes(available));
    case Kind::verificationFailed:
        return u"Copy did not verify (%1). Nothing was removed."_s.arg(text);
    case Kind::stopped:
        return u"Stopped. Nothing was moved."_s;
    case Kind::destinationUnusable:
    case Kind::hotPath:
    case Kind::failed:
        break;
    }
    return text;
}

} // namespace Quillbrook
