#pragma once

// Runs `model_server.py` for a test: a real server of made-up language models on the loopback address. The
// program that includes this defines MODEL_SERVER as the script's path.

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

namespace Quillbrook {

class ModelServer
{
public:
    explicit ModelServer(const QJsonObject &script)
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QStringLiteral("/usr/bin/python3"),
            { QStringLiteral("-BES"), QStringLiteral(MODEL_SERVER), QStringLiteral("--log"),
                m_folder.filePath(QStringLiteral("log")),
                QString::fromUtf8(QJsonDocument(script).toJson(QJsonDocument::Compact)) });
        if (m_process.waitForReadyRead(20'000))
            m_port = m_process.readLine().trimmed().toUShort();
        if (m_port == 0)
            qFatal("the server of models does not start");
    }
    ~ModelServer()
    {
        m_process.kill();
        m_process.waitForFinished(20'000);
    }
    ModelServer(const ModelServer &) = delete;
    ModelServer &operator=(const ModelServer &) = delete;

    [[nodiscard]] quint16 port() const { return m_port; }

    /// What was asked for at a path, or at any.
    [[nodiscard]] QList<QJsonObject> requests(const QString &path = {}) const
    {
        QFile log(m_folder.filePath(QStringLiteral("log")));
        QList<QJsonObject> found;
        if (!log.open(QIODevice::ReadOnly))
            return found;
        for (const auto &line : log.readAll().split('\n')) {
            const auto entry = QJsonDocument::fromJson(line).object();
            if (!entry.isEmpty() && (path.isEmpty() || entry[QLatin1String("path")].toString() == path))
                found.append(entry);
        }
        return found;
    }

private:
    QTemporaryDir m_folder;
    QProcess m_process;
    quint16 m_port = 0;
};

} // namespace Quillbrook
