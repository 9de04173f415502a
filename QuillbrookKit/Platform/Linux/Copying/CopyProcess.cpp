#include "Platform/Linux/Copying/CopyProcess.h"

#include "Platform/Linux/Files/LinuxFileReading.h"
#include "RawText.h"

#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>

#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr int reportMilliseconds = 200;
/// How long a stop may wait to be noticed.
constexpr int waitMilliseconds = 50;
/// A tree of a million unreadable files says so a million times.
constexpr qsizetype mostErrors = 65'536;

QString systemTool()
{
    const auto usual = u"/usr/bin/cp"_s;
    return QFile::exists(usual) ? usual : u"/bin/cp"_s;
}

QProcessEnvironment plainEnvironment()
{
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"LC_ALL"_s, u"C"_s);
    return environment;
}

std::string descriptorPath(const CopyProcess::Place &place)
{
    return "/proc/self/fd/" + std::to_string(place.descriptor);
}

// A folder's content is copied from the folder that the tool runs in, and into one that it opens once: going
// through the kernel's folder of descriptors for each file makes small ones take half as long again. A file
// is copied by its descriptors, whose paths are links, and followed as they are the command's own.
QStringList arguments(const CopyProcess::Order &order)
{
    const auto source = QString::fromStdString(descriptorPath(order.source));
    const auto target = QString::fromStdString(descriptorPath(order.target));
    if (order.isFolder)
        return { u"-a"_s, u"-t"_s, target, u"--"_s, u"."_s };
    return { u"-a"_s, u"-H"_s, u"-T"_s, u"--"_s, source, target };
}

// In the child, between fork and exec. Its parent is the thread that waits for it.
void prepareChild(int source, int target, bool isFolder, pid_t parent)
{
    ::fcntl(source, F_SETFD, 0);
    ::fcntl(target, F_SETFD, 0);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent || (isFolder && ::fchdir(source) != 0))
        ::_exit(1);
}

// What the process has handed to the system so far.
qint64 writtenBy(qint64 process)
{
    constexpr qsizetype longest = 4096;
    const auto name = "/proc/" + std::to_string(process) + "/io";
    const auto text = LinuxFileReading().contents(name, longest).value_or(QByteArray());
    const QByteArray key("wchar: ");
    const auto start = text.indexOf(key);
    if (start < 0)
        return 0;
    const auto from = start + key.size();
    return text.mid(from, text.indexOf('\n', from) - from).toLongLong();
}

// The tool knows both by names which say nothing to anybody. It quotes them, by either sign.
QByteArray withPaths(QByteArray words, const CopyProcess::Order &order)
{
    const auto source = QByteArray::fromStdString(order.source.path);
    const auto target = QByteArray::fromStdString(order.target.path);
    const auto knownTarget = QByteArray::fromStdString(descriptorPath(order.target));
    for (const auto *sign : { "'", "\"" }) {
        const QByteArray quote(sign);
        if (order.isFolder) {
            words.replace(quote + "./", quote + source + '/');
            words.replace(quote + '.' + quote, quote + source + quote);
        } else {
            words.replace(quote + QByteArray::fromStdString(descriptorPath(order.source)) + quote,
                quote + source + quote);
        }
        words.replace(quote + knownTarget + "/./", quote + target + '/');
        for (const auto *end : { "/.", "/", "" })
            words.replace(quote + knownTarget + end + quote, quote + target + quote);
    }
    return words;
}

QString lastWords(const QByteArray &errors, const CopyProcess::Order &order)
{
    const auto lines = errors.trimmed();
    auto words = withPaths(lines.mid(lines.lastIndexOf('\n') + 1), order);
    const QByteArray tool("cp: ");
    if (const auto start = words.indexOf(tool); start >= 0)
        words.remove(0, start + tool.size());
    return repairedText({ words.constData(), static_cast<size_t>(words.size()) });
}

class Run
{
public:
    explicit Run(const CopyProcess::Order &order)
        : m_order(order)
    {
        m_process.setProgram(systemTool());
        m_process.setArguments(arguments(order));
        m_process.setProcessEnvironment(plainEnvironment());
        m_process.setStandardInputFile(QProcess::nullDevice());
        m_process.setStandardOutputFile(QProcess::nullDevice());
        m_process.setChildProcessModifier(
            [source = order.source.descriptor, target = order.target.descriptor, isFolder = order.isFolder,
                parent = ::getpid()] { prepareChild(source, target, isFolder, parent); });
    }

    CopyProcess::Result finish()
    {
        m_process.start(QIODevice::ReadOnly);
        if (!m_process.waitForStarted())
            return { .error = u"The copying tool could not be started."_s };
        while (m_process.state() != QProcess::NotRunning) {
            if (m_order.stop.stop_requested())
                return stopped();
            m_process.waitForFinished(waitMilliseconds);
            keepErrors();
            report();
        }
        if (m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0)
            return { .end = CopyProcess::End::whole };
        const auto words = lastWords(m_errors, m_order);
        return { .error = words.isEmpty() ? u"The copying tool ended too early."_s : words };
    }

private:
    CopyProcess::Result stopped()
    {
        // What it waits for then is the disk.
        constexpr int patience = 60'000;
        m_process.kill();
        m_process.waitForFinished(patience);
        return { .end = CopyProcess::End::stopped };
    }

    void keepErrors()
    {
        m_errors += m_process.readAllStandardError();
        if (m_errors.size() > mostErrors)
            m_errors.remove(0, m_errors.size() - mostErrors);
    }

    void report()
    {
        m_waited += waitMilliseconds;
        if (m_waited < reportMilliseconds || !m_order.onProgress)
            return;
        m_waited = 0;
        m_order.onProgress(writtenBy(m_process.processId()));
    }

    const CopyProcess::Order &m_order;
    QProcess m_process;
    QByteArray m_errors;
    int m_waited = 0;
};

} // namespace

CopyProcess::Result CopyProcess::run(const Order &order)
{
    return Run(order).finish();
}

} // namespace Quillbrook
