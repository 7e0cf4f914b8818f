// A real log server on loopback for the upload tests: lighttpd with CGI scripts in
// Perl whose form parsing (CGI.pm) and MD5 (Digest::MD5) are not ours. upload.cgi
// stores what arrived (the file, the call sign, the request's protocol and its
// Content-Type header) and answers by the mode file: "ok" echoes the MD5, "wrongmd5"
// echoes another one, "nomarker" answers 200 without the marker.
// A silent server (accepts, never answers) and a closed port come with it.
#pragma once

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kolibrino::test {

// A port nobody listens on right now.
inline int FreePort() {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::bind(fd, reinterpret_cast<sockaddr*>(&a), sizeof a);
    socklen_t len = sizeof a;
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&a), &len);
    ::close(fd);
    return ntohs(a.sin_port);
}

// Listens and never accepts: the connection is made by the kernel, no reply ever comes.
class SilentServer {
public:
    SilentServer() {
        fd_ = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in a{};
        a.sin_family = AF_INET;
        a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        ::bind(fd_, reinterpret_cast<sockaddr*>(&a), sizeof a);
        ::listen(fd_, 8);
        socklen_t len = sizeof a;
        ::getsockname(fd_, reinterpret_cast<sockaddr*>(&a), &len);
        port = ntohs(a.sin_port);
    }
    ~SilentServer() { ::close(fd_); }
    QString Host() const { return QStringLiteral("127.0.0.1:%1").arg(port); }
    int port = 0;

private:
    int fd_ = -1;
};

class UploadServer {
public:
    UploadServer() {
        QDir root(dir.path());
        root.mkpath(QStringLiteral("www/cgi-bin"));
        root.mkpath(QStringLiteral("store"));
        Write(QStringLiteral("www/cgi-bin/upload.cgi"), kUploadCgi);
        Write(QStringLiteral("www/cgi-bin/show.cgi"),
              "print \"Content-Type: text/html\\r\\n\\r\\n<p>Logs</p>\";\n");
        SetMode("ok");
        port = FreePort();
        const QString conf = QStringLiteral("server.document-root = \"%1/www\"\n"
                                            "server.bind = \"127.0.0.1\"\n"
                                            "server.port = %2\n"
                                            "server.errorlog = \"%1/error.log\"\n"
                                            "server.modules = (\"mod_cgi\", \"mod_setenv\")\n"
                                            "cgi.assign = (\".cgi\" => \"/usr/bin/perl\")\n"
                                            "setenv.add-environment = (\"STORE\" => \"%1/store\")\n")
                                 .arg(dir.path())
                                 .arg(port);
        Write(QStringLiteral("lighttpd.conf"), conf.toUtf8());
        process.setProcessChannelMode(QProcess::ForwardedChannels);
        process.start(QStringLiteral("/usr/sbin/lighttpd"), {QStringLiteral("-D"), QStringLiteral("-f"),
                                                             dir.filePath(QStringLiteral("lighttpd.conf"))});
    }
    ~UploadServer() {
        process.terminate();
        process.waitForFinished(5000);
    }
    // Waits until the server takes connections; false when it never does.
    bool WaitReady() {
        if (!process.waitForStarted(5000)) return false;
        for (int i = 0; i < 100; ++i) {
            const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
            sockaddr_in a{};
            a.sin_family = AF_INET;
            a.sin_port = htons(quint16(port));
            a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
            const bool up = ::connect(fd, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0;
            ::close(fd);
            if (up) return true;
            QTest::qWait(50);
        }
        return false;
    }
    QString Host() const { return QStringLiteral("127.0.0.1:%1").arg(port); }
    void SetMode(const char* mode) { Write(QStringLiteral("store/mode"), mode); }
    QByteArray Stored(const char* name) const {
        QFile f(dir.filePath(QStringLiteral("store/") + QLatin1String(name)));
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
    int Requests() const { return Stored("count").trimmed().toInt(); }

    QTemporaryDir dir;
    QProcess process;
    int port = 0;

private:
    void Write(const QString& rel, const QByteArray& bytes) {
        QFile f(dir.filePath(rel));
        QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(bytes);
    }

    static constexpr const char* kUploadCgi = R"PERL(
use strict;
use warnings;
use CGI;
use Digest::MD5 qw(md5_hex);
my $store = $ENV{STORE};
sub put { my ($name, $data) = @_; open(my $f, '>', "$store/$name") or die; binmode $f; print $f $data; close $f; }
sub get { my ($name) = @_; open(my $f, '<', "$store/$name") or return ''; local $/; my $d = <$f>; close $f; return $d; }
put('count', (get('count') || 0) + 1);
put('protocol', $ENV{SERVER_PROTOCOL} // '');
put('content_type', $ENV{CONTENT_TYPE} // '');
put('agent', $ENV{HTTP_USER_AGENT} // '');
my $q = CGI->new;
my $fh = $q->upload('logfile');
my $data = '';
if ($fh) { binmode $fh; local $/; $data = <$fh>; }
put('logfile', $data);
put('filename', scalar($q->param('logfile')) // '');
put('call_sign', scalar($q->param('call_sign')) // '');
my $mode = get('mode');
my $md5 = uc(md5_hex($data));
$md5 = lc($md5) if $mode eq 'lowercase';
$md5 = '0123456789ABCDEF0123456789ABCDEF' if $mode eq 'wrongmd5';
print "Content-Type: text/html\r\n\r\n";
if ($mode eq 'nomarker') { print "<html><body><p>Danke</p></body></html>\n"; exit 0; }
my $call = $q->param('call_sign') // '';
print "<html><body>\n<p>MD5: <span id=\"md5\"> $md5 </span></p>\n";
print "<p>Datei: <span id=\"logfile\">$call.log</span></p>\n</body></html>\n";
)PERL";
};

} // namespace kolibrino::test
