#pragma once

// A certificate authority of a test's own and a server's certificate by it, made by the openssl program in a
// temporary folder and gone with it.

#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QTemporaryDir>

namespace Quillbrook {

class TestCertificates
{
public:
    /// `names`: whom the server's certificate speaks for, as in "DNS:localhost,IP:127.0.0.1".
    explicit TestCertificates(const QString &names)
    {
        m_isMade
            = run({ "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes",
                  "-days", "2", "-subj", "/CN=Test authority", "-keyout", "ca.key", "-out", "ca.pem" })
            && run({ "req", "-new", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes",
                "-subj", "/CN=Test server", "-keyout", "server.key", "-out", "server.csr" })
            && write("names", "subjectAltName=" + names.toLatin1() + "\n")
            && run({ "x509", "-req", "-in", "server.csr", "-CA", "ca.pem", "-CAkey", "ca.key",
                "-CAcreateserial", "-days", "2", "-extfile", "names", "-out", "server.pem" });
    }

    [[nodiscard]] bool isMade() const { return m_isMade && !authority().isEmpty(); }

    /// What the server shows.
    [[nodiscard]] QSslConfiguration server() const
    {
        auto tls = QSslConfiguration::defaultConfiguration();
        tls.setLocalCertificateChain(
            QSslCertificate::fromPath(m_folder.filePath(QStringLiteral("server.pem"))));
        QFile file(m_folder.filePath(QStringLiteral("server.key")));
        if (file.open(QIODevice::ReadOnly))
            tls.setPrivateKey(QSslKey(&file, QSsl::Ec));
        tls.setPeerVerifyMode(QSslSocket::VerifyNone);
        return tls;
    }
    /// For a client that trusts this authority and no other.
    [[nodiscard]] QSslConfiguration trusting() const
    {
        auto tls = QSslConfiguration::defaultConfiguration();
        tls.setCaCertificates(authority());
        return tls;
    }

private:
    [[nodiscard]] QList<QSslCertificate> authority() const
    {
        return QSslCertificate::fromPath(m_folder.filePath(QStringLiteral("ca.pem")));
    }
    bool run(const QStringList &arguments)
    {
        QProcess process;
        process.setWorkingDirectory(m_folder.path());
        process.start(QStringLiteral("openssl"), arguments, QIODevice::ReadOnly);
        return process.waitForFinished(20'000) && process.exitStatus() == QProcess::NormalExit
            && process.exitCode() == 0;
    }
    bool write(const QString &name, const QByteArray &content)
    {
        QFile file(m_folder.filePath(name));
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
    }

    QTemporaryDir m_folder;
    bool m_isMade = false;
};

} // namespace Quillbrook
