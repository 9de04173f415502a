#include "Advisor/AvailabilityWords.h"

#include <QCoreApplication>

namespace Quillbrook::AvailabilityWords {

namespace {

struct Words
{
    Q_DECLARE_TR_FUNCTIONS(Advisor)
};

/// Why there is none, with what would help.
QString reason(const ModelAvailability &availability)
{
    switch (availability.problem) {
    case ModelAvailability::Problem::someoneElses:
        return Words::tr("the model server that runs here is another person's: start one of your own");
    case ModelAvailability::Problem::tooOld:
        return Words::tr("this %1 is too old: version 0.5 or newer is needed").arg(availability.server);
    case ModelAvailability::Problem::noModel:
        return Words::tr("%1 has no model yet: get one with “ollama pull llama3.2”").arg(availability.server);
    case ModelAvailability::Problem::onlyElsewhere:
        return Words::tr("%1 offers only models that run on other machines: get one that runs here")
            .arg(availability.server);
    case ModelAvailability::Problem::loading:
        return Words::tr("%1 is still loading its model").arg(availability.server);
    case ModelAvailability::Problem::none:
    case ModelAvailability::Problem::noServer:
        break;
    }
    return Words::tr("no model server runs here: start Ollama, llama.cpp's server, llamafile or vLLM");
}

} // namespace

QString sentence(const ModelAvailability &availability)
{
    if (availability.isAvailable())
        return Words::tr("Answers are produced on this Mac — your files are never sent anywhere");
    return Words::tr("On-device model unavailable (%1). Everything else still works.")
        .arg(reason(availability));
}

QString answerer(const ModelAvailability &availability)
{
    return availability.isAvailable()
        ? Words::tr("%1, %2", "program and model").arg(availability.server, availability.model)
        : QString();
}

} // namespace Quillbrook::AvailabilityWords
