#include "Photos/CameraName.h"

#include <array>

namespace Quillbrook {

namespace {

constexpr qint64 secondsOfMinute = 60;
constexpr qint64 secondsOfHour = 60 * secondsOfMinute;
constexpr qint64 secondsOfDay = 24 * secondsOfHour;
constexpr int earliestYear = 1970;

/// %Y %M %D %h %m %s are numbers of as many digits as such ones have, %H is an hour that may have one, %f is
/// digits of any number. What follows a form in a name is no digit; where it is AM or PM, it belongs to it.
struct Form
{
    std::string_view text;
    bool isUtc = false;
};

constexpr std::array forms{
    // Phones' cameras.
    Form{ "IMG_%Y%M%D_%h%m%s" },
    Form{ "IMG_%Y%M%D_%h%m%s%f" },
    Form{ "VID_%Y%M%D_%h%m%s" },
    Form{ "VID_%Y%M%D_%h%m%s%f" },
    Form{ "MVIMG_%Y%M%D_%h%m%s" },
    Form{ "PANO_%Y%M%D_%h%m%s" },
    Form{ "IMG%Y%M%D%h%m%s" },
    Form{ "VID%Y%M%D%h%m%s" },
    Form{ "BURST%Y%M%D%h%m%s" },
    Form{ "BURST%Y%M%D%h%m%s%f" },
    Form{ "%fIMG_%f_BURST%Y%M%D%h%m%s" },
    Form{ "%fIMG_%f_BURST%Y%M%D%h%m%s%f" },
    Form{ "DSC_%f_BURST%Y%M%D%h%m%s%f" },
    Form{ "DSCPDC_%f_BURST%Y%M%D%h%m%s%f" },
    Form{ "PXL_%Y%M%D_%h%m%s%f", true },
    Form{ "WP_%Y%M%D_%h_%m_%s" },
    Form{ "P_%Y%M%D_%h%m%s" },
    Form{ "C360_%Y-%M-%D-%h-%m-%s" },
    Form{ "IMG_%Y-%M-%D-%h-%m-%s" },
    // Drones.
    Form{ "DJI_%Y%M%D_%h%m%s" },
    Form{ "DJI_%Y%M%D%h%m%s" },
    // What programs call them that carry them over.
    Form{ "%Y%M%D_%h%m%s" },
    Form{ "%Y-%M-%D %h.%m.%s" },
    Form{ "%Y-%M-%D %h-%m-%s" },
    Form{ "%Y-%M-%D_%h-%m-%s" },
    Form{ "%Y-%M-%D_%h.%m.%s" },
    Form{ "photo_%Y-%M-%D_%h-%m-%s" },
    Form{ "video_%Y-%M-%D_%h-%m-%s" },
    Form{ "signal-%Y-%M-%D-%h%m%s" },
    Form{ "signal-%Y-%M-%D-%h-%m-%s" },
    Form{ "signal-%Y-%M-%D-%h-%m-%s-%f" },
    Form{ "WhatsApp Image %Y-%M-%D at %H.%m.%s" },
    Form{ "WhatsApp Video %Y-%M-%D at %H.%m.%s" },
    Form{ "IMG-%Y%M%D-WA%f" },
    Form{ "VID-%Y%M%D-WA%f" },
    // Screens.
    Form{ "Screenshot_%Y%M%D-%h%m%s" },
    Form{ "Screenshot_%Y%M%D_%h%m%s" },
    Form{ "Screenshot_%Y-%M-%D-%h-%m-%s" },
    Form{ "Screenshot %Y-%M-%D %h%m%s" },
    Form{ "Screenshot %Y-%M-%D at %H.%m.%s" },
    Form{ "Screen Shot %Y-%M-%D at %H.%m.%s" },
    Form{ "Screen Recording %Y-%M-%D at %H.%m.%s" },
    Form{ "Screenshot from %Y-%M-%D %h-%m-%s" },
    Form{ "Screencast from %Y-%M-%D %h-%m-%s" },
};

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

/// Takes a number of exactly so many digits from the beginning of `rest`.
bool takeNumber(std::string_view &rest, size_t digits, int &number)
{
    if (rest.size() < digits)
        return false;
    number = 0;
    for (const auto character : rest.substr(0, digits)) {
        if (!isDigit(character))
            return false;
        number = number * 10 + (character - '0');
    }
    rest.remove_prefix(digits);
    return true;
}

bool takeField(char field, std::string_view &rest, CameraMoment &moment)
{
    constexpr size_t digitsOfYear = 4;
    constexpr size_t digitsOfOthers = 2;
    switch (field) {
    case 'Y':
        return takeNumber(rest, digitsOfYear, moment.year);
    case 'M':
        return takeNumber(rest, digitsOfOthers, moment.month);
    case 'D':
        return takeNumber(rest, digitsOfOthers, moment.day);
    case 'h':
        return takeNumber(rest, digitsOfOthers, moment.hour);
    case 'H':
        return takeNumber(rest, digitsOfOthers, moment.hour) || takeNumber(rest, 1, moment.hour);
    case 'm':
        return takeNumber(rest, digitsOfOthers, moment.minute);
    case 's':
        return takeNumber(rest, digitsOfOthers, moment.second);
    default:
        if (rest.empty() || !isDigit(rest.front()))
            return false;
        while (!rest.empty() && isDigit(rest.front()))
            rest.remove_prefix(1);
        return true;
    }
}

/// Takes the half of the day that the hour is of, where one is told. False for an hour that a half has not.
bool takeHalfOfDay(std::string_view &rest, CameraMoment &moment)
{
    constexpr int hoursOfHalf = 12;
    for (const std::string_view blank : { " ", "\u202f" }) {
        const auto half = rest.starts_with(blank) ? rest.substr(blank.size(), 2) : std::string_view();
        if (half != "AM" && half != "PM")
            continue;
        if (moment.hour < 1 || moment.hour > hoursOfHalf)
            return false;
        moment.hour = moment.hour % hoursOfHalf + (half == "PM" ? hoursOfHalf : 0);
        rest.remove_prefix(blank.size() + half.size());
        break;
    }
    return true;
}

bool isReal(const CameraMoment &moment)
{
    return moment.year >= earliestYear && QDate::isValid(moment.year, moment.month, moment.day)
        && QTime::isValid(moment.hour, moment.minute, moment.second);
}

std::optional<CameraMoment> momentIn(std::string_view name, const Form &form)
{
    CameraMoment moment{ .isUtc = form.isUtc };
    for (size_t i = 0; i < form.text.size(); ++i) {
        if (form.text[i] == '%') {
            if (!takeField(form.text[++i], name, moment))
                return std::nullopt;
        } else {
            if (name.empty() || name.front() != form.text[i])
                return std::nullopt;
            name.remove_prefix(1);
        }
    }
    if (!takeHalfOfDay(name, moment) || (!name.empty() && isDigit(name.front())) || !isReal(moment))
        return std::nullopt;
    return moment;
}

} // namespace

std::optional<CameraMoment> CameraName::moment(std::string_view name)
{
    for (const auto &form : forms)
        if (auto found = momentIn(name, form))
            return found;
    return std::nullopt;
}

qint64 MomentClock::seconds(const CameraMoment &moment)
{
    const QDate day(moment.year, moment.month, moment.day);
    const auto sinceMidnight = moment.hour * secondsOfHour + moment.minute * secondsOfMinute + moment.second;
    if (moment.isUtc)
        return QDate(earliestYear, 1, 1).daysTo(day) * secondsOfDay + sinceMidnight;
    if (const auto begins = beginning(day))
        return *begins + sinceMidnight;
    return QDateTime(day, QTime(moment.hour, moment.minute, moment.second)).toSecsSinceEpoch();
}

std::optional<qint64> MomentClock::beginning(const QDate &day)
{
    const auto [place, isNew] = m_days.try_emplace(day.toJulianDay());
    if (isNew) {
        const auto begins = day.startOfDay().toSecsSinceEpoch();
        if (day.addDays(1).startOfDay().toSecsSinceEpoch() - begins == secondsOfDay
            && QDateTime(day, QTime(12, 0)).toSecsSinceEpoch() - begins == secondsOfDay / 2)
            place->second = begins;
    }
    return place->second;
}

} // namespace Quillbrook
