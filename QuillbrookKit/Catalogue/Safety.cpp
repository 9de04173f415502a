#include "Catalogue/Safety.h"

#include "Fatal.h"

namespace Quillbrook {

using namespace Qt::StringLiterals;

QString label(Safety safety)
{
    switch (safety) {
    case Safety::safe:
        return u"Safe to remove"_s;
    case Safety::careful:
        return u"Worth a thought"_s;
    case Safety::reportOnly:
        return u"Never suggested"_s;
    }
    fatal("a safety class that does not exist");
}

} // namespace Quillbrook
