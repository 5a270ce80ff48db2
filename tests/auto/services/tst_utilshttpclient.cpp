#include <UtilsHttpClient.h>

#include "MadeUpReply.h"
#include "WebServer.h"

#include <UniProgTest.h>

#include <QApplication>
#include <QAuthenticator>
#include <QCryptographicHash>
#include <QEventLoop>
#include <QMetaMethod>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPointer>
#include <QSignalSpy>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTimer>

#include <memory>

namespace {

constexpr int PatienceMs = 30'000;
constexpr int OpensslPatienceMs = 60'000;

// The same as in http_server.py.
const QString User = QStringLiteral("gisela");
const QString Password = QStringLiteral("s3cret-passphrase");
constexpr int BigBlockSize = 1 << 20;
constexpr int BigBlocks = 100;
constexpr int MaxChallenges = 12;

/// The body of /body: every byte value, four times.
QByteArray plainBody()
{
    QByteArray body;
    for (int i = 0; i < 1024; ++i)
        body.append(char(i));
    return body;
}

/// Lets the client take note of the reply's end, as if its manager had reported it.
void finish(UtilsHttpClient *client, QNetworkReply *reply)
{
    QVERIFY(QMetaObject::invokeMethod(client, "slotRequestFinished", Q_ARG(QNetworkReply *, reply)));
}

void deleteWhatIsScheduled()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// A client and what it told of its requests.
struct Session
{
    bool ended(int count)
    {
        return QTest::qWaitFor([&] { return ends.size() >= count; }, PatienceMs);
    }

    UtilsHttpClient client;
    QSignalSpy ends{&client, &UtilsHttpClient::signalServerDownloadFinished};
};

QStringList everyMessage;
QtMessageHandler previousHandler = nullptr;

void keepMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    everyMessage.append(message);
    if (previousHandler)
        previousHandler(type, context, message);
}

} // namespace

#define COMPARE_END(session, index, status, body)                                                                      \
    do {                                                                                                               \
        QVERIFY((session).ended((index) + 1));                                                                         \
        QCOMPARE((session).ends.size(), (index) + 1);                                                                  \
        QCOMPARE((session).ends.at(index).at(1).toByteArray(), QByteArray(body));                                      \
        QCOMPARE((session).ends.at(index).at(0).toBool(), status);                                                     \
    } while (false)

class tst_UtilsHttpClient : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void itHasNoParent();
    void theMethodsStandInTheirOrder();

    void aBodyArrivesWholeAndOnce_data();
    void aBodyArrivesWholeAndOnce();
    void aLargeBodyArrivesWhole();
    void aFailedRequestEndsWithNothing_data();
    void aFailedRequestEndsWithNothing();
    void aChunkedBodyWithoutItsLastChunkEndsOnce();
    void aServerThatIsNotThereEndsWithNothing();
    void anInvalidUrlIsDroppedInSilence_data();
    void anInvalidUrlIsDroppedInSilence();
    void requestsFollowOneAnother();
    void theRequestIsQtsDefaultOne();
    void aRunningRequestIsAbortedWithTheClient();
    void theClientMayBeDeletedLaterByAReceiver();

    void theClientMayGoInAnEventLoopOfAReceiver_data();
    void theClientMayGoInAnEventLoopOfAReceiver();
    void redirectionsOnTheWireAreFollowed_data();
    void redirectionsOnTheWireAreFollowed();
    void badRedirectionsOnTheWireEndWithNothing_data();
    void badRedirectionsOnTheWireEndWithNothing();
    void aReportedAbsoluteTargetIsRequested();
    void aReportedRelativeTargetFails();
    void aReportedTargetAfterAnErrorIsNotFollowed();

    void theBodyIsAppendedToTheBuffer();
    void anErrorEmptiesTheBuffer();
    void aNewRequestEmptiesTheBufferEvenWhenItsUrlIsInvalid();
    void anAnsweredReplyIsDeletedLater();

    void aChallengeIsAnsweredWithTheCredentials_data();
    void aChallengeIsAnsweredWithTheCredentials();
    void wrongCredentialsEndTheRequest_data();
    void wrongCredentialsEndTheRequest();
    void aServerThatChangesItsRealmEndsWithNothing_data();
    void aServerThatChangesItsRealmEndsWithNothing();
    void aChallengeDiscardsWhatTheReplyHolds();

    void aTlsErrorAbortsTheReply();
    void aSelfSignedCertificateIsFatal();

private:
    std::unique_ptr<WebServer> server;
};

void tst_UtilsHttpClient::initTestCase()
{
    if (QStandardPaths::findExecutable(QStringLiteral("python3")).isEmpty())
        QSKIP("python3, which runs the web server of these tests, is not installed.");
    everyMessage.clear();
    previousHandler = qInstallMessageHandler(keepMessage);
    server = std::make_unique<WebServer>();
    QVERIFY(server->start());
}

void tst_UtilsHttpClient::cleanup()
{
    server->forgetLog();
    // Whatever happened: the credentials are in no message.
    for (const QString &message : std::as_const(everyMessage)) {
        QVERIFY(!message.contains(User));
        QVERIFY(!message.contains(Password));
    }
}

void tst_UtilsHttpClient::itHasNoParent()
{
    const UtilsHttpClient client;
    QVERIFY(!client.parent());
}

void tst_UtilsHttpClient::theMethodsStandInTheirOrder()
{
    const QMetaObject &metaObject = UtilsHttpClient::staticMetaObject;
    QList<QByteArray> signatures;
    for (int index = metaObject.methodOffset(); index < metaObject.methodCount(); ++index)
        signatures.append(metaObject.method(index).methodSignature());
    QCOMPARE(signatures,
             QList<QByteArray>({"signalServerDownloadFinished(bool,QByteArray)", "slotRequestFinished(QNetworkReply*)",
                                "slotProvideAuthentication(QNetworkReply*,QAuthenticator*)",
                                "slotSslErrors(QNetworkReply*,QList<QSslError>)"}));
    const QMetaMethod signal = metaObject.method(metaObject.methodOffset());
    QCOMPARE(signal.methodType(), QMetaMethod::Signal);
    QCOMPARE(signal.parameterNames(), QList<QByteArray>({"finishedStatus", "argsSrverResponse"}));
    for (int index = metaObject.methodOffset() + 1; index < metaObject.methodCount(); ++index) {
        QCOMPARE(metaObject.method(index).methodType(), QMetaMethod::Slot);
        QCOMPARE(metaObject.method(index).access(), QMetaMethod::Private);
    }
}

void tst_UtilsHttpClient::aBodyArrivesWholeAndOnce_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("with its length") << QStringLiteral("/body") << plainBody();
    QTest::newRow("empty") << QStringLiteral("/empty") << QByteArray();
    QTest::newRow("chunked") << QStringLiteral("/chunked") << QByteArray("first;second;third\r\n\0", 21);
    QTest::newRow("until the server closes") << QStringLiteral("/until-close") << plainBody();
    QTest::newRow("slow") << QStringLiteral("/slow") << QByteArray("01234567890123456789");
    QTest::newRow("a blank in the URL") << QStringLiteral("/any/new suite") << plainBody();
    QTest::newRow("another status of success") << QStringLiteral("/status/203") << QByteArray("the page of status 203");
}

void tst_UtilsHttpClient::aBodyArrivesWholeAndOnce()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, body);
    Session session;
    session.client.SendUrlRequest(server->url(path));
    QVERIFY(session.ends.isEmpty());
    COMPARE_END(session, 0, true, body);
}

void tst_UtilsHttpClient::aLargeBodyArrivesWhole()
{
    QByteArray block;
    for (int i = 0; i < BigBlockSize; ++i)
        block.append(char(i * 7LL % 251));
    QCryptographicHash expected(QCryptographicHash::Sha1);
    for (int i = 0; i < BigBlocks; ++i)
        expected.addData(block);

    Session session;
    session.client.SendUrlRequest(server->url(QStringLiteral("/big")));
    QVERIFY(session.ended(1));
    QVERIFY(session.ends.at(0).at(0).toBool());
    const QByteArray body = session.ends.at(0).at(1).toByteArray();
    QCOMPARE(body.size(), qsizetype(BigBlocks) * BigBlockSize);
    QCOMPARE(QCryptographicHash::hash(body, QCryptographicHash::Sha1), expected.result());
}

void tst_UtilsHttpClient::aFailedRequestEndsWithNothing_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("404") << QStringLiteral("/status/404");
    QTest::newRow("410") << QStringLiteral("/status/410");
    QTest::newRow("500") << QStringLiteral("/status/500");
    QTest::newRow("503") << QStringLiteral("/status/503");
    QTest::newRow("shorter than its length") << QStringLiteral("/cut-off");
    QTest::newRow("no HTTP") << QStringLiteral("/garbage");
    QTest::newRow("larger than the largest") << QStringLiteral("/endless");
}

void tst_UtilsHttpClient::aFailedRequestEndsWithNothing()
{
    QFETCH(QString, path);
    Session session;
    session.client.SendUrlRequest(server->url(path));
    COMPARE_END(session, 0, false, "");
}

void tst_UtilsHttpClient::aChunkedBodyWithoutItsLastChunkEndsOnce()
{
    Session session;
    session.client.SendUrlRequest(server->url(QStringLiteral("/chunked/cut")));
    // Whether Qt notices the missing end depends on how the packets arrive; the client passes on what Qt says.
    QVERIFY(session.ended(1));
    const bool counted = session.ends.at(0).at(0).toBool();
    const QByteArray chunks("first;second;third\r\n\0", 21);
    COMPARE_END(session, 0, counted, counted ? chunks : QByteArray());
}

void tst_UtilsHttpClient::aServerThatIsNotThereEndsWithNothing()
{
    quint16 port = 0;
    {
        QTcpServer listener;
        QVERIFY(listener.listen(QHostAddress::LocalHost));
        port = listener.serverPort();
    }
    Session session;
    session.client.SendUrlRequest(QStringLiteral("http://127.0.0.1:%1/").arg(port));
    COMPARE_END(session, 0, false, "");
    session.client.SendUrlRequest(QStringLiteral("no-scheme-at-all"));
    COMPARE_END(session, 1, false, "");
}

void tst_UtilsHttpClient::anInvalidUrlIsDroppedInSilence_data()
{
    QTest::addColumn<QString>("url");
    QTest::newRow("empty") << QString();
    QTest::newRow("open bracket") << QStringLiteral("http://[");
    QTest::newRow("port out of range") << QStringLiteral("http://127.0.0.1:99999/");
}

void tst_UtilsHttpClient::anInvalidUrlIsDroppedInSilence()
{
    QFETCH(QString, url);
    Session session;
    session.client.SendUrlRequest(url);
    // The next request is the only one that is heard of.
    session.client.SendUrlRequest(server->url(QStringLiteral("/body")));
    COMPARE_END(session, 0, true, plainBody());
    QTRY_COMPARE(server->log(), QStringList(QStringLiteral("/body 200")));
}

void tst_UtilsHttpClient::requestsFollowOneAnother()
{
    Session session;
    session.client.SendUrlRequest(server->url(QStringLiteral("/body")));
    COMPARE_END(session, 0, true, plainBody());
    session.client.SendUrlRequest(server->url(QStringLiteral("/status/500")));
    COMPARE_END(session, 1, false, "");
    session.client.SendUrlRequest(server->url(QStringLiteral("/status/200")));
    COMPARE_END(session, 2, true, "the page of status 200");
}

void tst_UtilsHttpClient::theRequestIsQtsDefaultOne()
{
    const QString url = server->url(QStringLiteral("/headers"));
    QNetworkAccessManager manager;
    const std::unique_ptr<QNetworkReply> plain(manager.get(QNetworkRequest(QUrl(url))));
    QTRY_VERIFY_WITH_TIMEOUT(plain->isFinished(), PatienceMs);
    const QByteArray headers = plain->readAll();
    QVERIFY(headers.contains("Host: 127.0.0.1"));

    Session session;
    session.client.SendUrlRequest(url);
    COMPARE_END(session, 0, true, headers);
}

void tst_UtilsHttpClient::aRunningRequestIsAbortedWithTheClient()
{
    int ends = 0;
    auto client = std::make_unique<UtilsHttpClient>();
    connect(client.get(), &UtilsHttpClient::signalServerDownloadFinished, this, [&ends] { ++ends; });
    client->SendUrlRequest(server->url(QStringLiteral("/stall")));
    QTRY_COMPARE_WITH_TIMEOUT(server->log(), QStringList(QStringLiteral("/stall 200")), PatienceMs);
    client.reset();
    QTRY_COMPARE_WITH_TIMEOUT(server->log().value(1), QStringLiteral("/stall gone"), PatienceMs);
    QCOMPARE(ends, 0);
}

void tst_UtilsHttpClient::theClientMayBeDeletedLaterByAReceiver()
{
    const QPointer<UtilsHttpClient> client = new UtilsHttpClient;
    connect(client, &UtilsHttpClient::signalServerDownloadFinished, client, &QObject::deleteLater);
    client->SendUrlRequest(server->url(QStringLiteral("/body")));
    QTRY_VERIFY_WITH_TIMEOUT(!client, PatienceMs);
}

void tst_UtilsHttpClient::theClientMayGoInAnEventLoopOfAReceiver_data()
{
    QTest::addColumn<bool>("later");
    QTest::newRow("deleted") << false;
    QTest::newRow("deleted later") << true;
}

void tst_UtilsHttpClient::theClientMayGoInAnEventLoopOfAReceiver()
{
    QFETCH(bool, later);
    const QPointer<UtilsHttpClient> client = new UtilsHttpClient;
    bool receiverReturned = false;
    connect(client, &UtilsHttpClient::signalServerDownloadFinished, this, [&] {
        QTimer::singleShot(0, this, [client, later] {
            if (later)
                client->deleteLater();
            else
                delete client;
        });
        QEventLoop loop; // such as that of a message box
        connect(client, &QObject::destroyed, &loop, &QEventLoop::quit, Qt::QueuedConnection);
        loop.exec();
        QVERIFY(!client);
        receiverReturned = true;
    });
    client->SendUrlRequest(server->url(QStringLiteral("/body")));
    QTRY_VERIFY_WITH_TIMEOUT(receiverReturned, PatienceMs);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void tst_UtilsHttpClient::redirectionsOnTheWireAreFollowed_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("hops");
    for (const int status : {301, 302, 303, 307, 308})
        QTest::addRow("absolute, %d", status) << QStringLiteral("/redirect/absolute/%1").arg(status) << 1;
    QTest::newRow("relative") << QStringLiteral("/redirect/relative") << 1;
    QTest::newRow("a chain") << QStringLiteral("/redirect/chain/5") << 5;
}

void tst_UtilsHttpClient::redirectionsOnTheWireAreFollowed()
{
    QFETCH(QString, path);
    QFETCH(int, hops);
    Session session;
    session.client.SendUrlRequest(server->url(path));
    COMPARE_END(session, 0, true, plainBody());
    QTRY_COMPARE_WITH_TIMEOUT(server->log().size(), hops + 1, PatienceMs);
    QCOMPARE(server->log().last(), QStringLiteral("/body 200"));
}

void tst_UtilsHttpClient::badRedirectionsOnTheWireEndWithNothing_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("to itself") << QStringLiteral("/redirect/loop");
    QTest::newRow("to a local file") << QStringLiteral("/redirect/file");
}

void tst_UtilsHttpClient::badRedirectionsOnTheWireEndWithNothing()
{
    QFETCH(QString, path);
    Session session;
    session.client.SendUrlRequest(server->url(path));
    COMPARE_END(session, 0, false, "");
}

void tst_UtilsHttpClient::aReportedAbsoluteTargetIsRequested()
{
    Session session;
    const QPointer<MadeUpReply> reply = new MadeUpReply("this way");
    const std::unique_ptr<MadeUpReply> owner(reply);
    reply->setRedirection(QUrl(server->url(QStringLiteral("/body"))));
    finish(&session.client, reply);
    QVERIFY(session.ends.isEmpty());
    COMPARE_END(session, 0, true, plainBody());
    QTRY_COMPARE(server->log(), QStringList(QStringLiteral("/body 200")));

    // Unlike a reply with a body, one that redirects is left alone.
    deleteWhatIsScheduled();
    QVERIFY(reply);
    QCOMPARE(reply->readAll(), QByteArray("this way"));
}

void tst_UtilsHttpClient::aReportedRelativeTargetFails()
{
    Session session;
    MadeUpReply reply("this way");
    reply.setRedirection(QUrl(QStringLiteral("/body")));
    finish(&session.client, &reply);
    COMPARE_END(session, 0, false, "");
    QVERIFY(server->log().isEmpty());
}

void tst_UtilsHttpClient::aReportedTargetAfterAnErrorIsNotFollowed()
{
    Session session;
    auto *reply = new MadeUpReply("this way", QNetworkReply::InsecureRedirectError);
    reply->setRedirection(QUrl(server->url(QStringLiteral("/body"))));
    finish(&session.client, reply);
    COMPARE_END(session, 0, false, "");
    QVERIFY(server->log().isEmpty());
}

void tst_UtilsHttpClient::theBodyIsAppendedToTheBuffer()
{
    Session session;
    finish(&session.client, new MadeUpReply("one"));
    COMPARE_END(session, 0, true, "one");
    // Two requests that were sent before the first one ended share the buffer.
    finish(&session.client, new MadeUpReply(", two"));
    COMPARE_END(session, 1, true, "one, two");
}

void tst_UtilsHttpClient::anErrorEmptiesTheBuffer()
{
    Session session;
    finish(&session.client, new MadeUpReply("one"));
    finish(&session.client, new MadeUpReply("a page about it", QNetworkReply::ContentNotFoundError));
    COMPARE_END(session, 1, false, "");
    finish(&session.client, new MadeUpReply("two"));
    COMPARE_END(session, 2, true, "two");
}

void tst_UtilsHttpClient::aNewRequestEmptiesTheBufferEvenWhenItsUrlIsInvalid()
{
    Session session;
    finish(&session.client, new MadeUpReply("one"));
    session.client.SendUrlRequest(QString());
    finish(&session.client, new MadeUpReply("two"));
    COMPARE_END(session, 1, true, "two");
}

void tst_UtilsHttpClient::anAnsweredReplyIsDeletedLater()
{
    Session session;
    const QPointer<MadeUpReply> good = new MadeUpReply("one");
    const QPointer<MadeUpReply> bad = new MadeUpReply("", QNetworkReply::TimeoutError);
    finish(&session.client, good);
    finish(&session.client, bad);
    QVERIFY(good && bad);
    deleteWhatIsScheduled();
    QVERIFY(!good && !bad);
}

void tst_UtilsHttpClient::aChallengeIsAnsweredWithTheCredentials_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("basic") << QStringLiteral("/basic");
    QTest::newRow("digest") << QStringLiteral("/digest");
}

void tst_UtilsHttpClient::aChallengeIsAnsweredWithTheCredentials()
{
    QFETCH(QString, path);
    Session session;
    session.client.setUserName(User);
    session.client.setUserPassword(Password);
    session.client.SendUrlRequest(server->url(path));
    // The page that came with the challenge is not in the body.
    COMPARE_END(session, 0, true, plainBody());
    QTRY_COMPARE(server->log(), QStringList({path + QStringLiteral(" 401"), path + QStringLiteral(" 200")}));
    session.client.SendUrlRequest(server->url(path));
    COMPARE_END(session, 1, true, plainBody());
}

void tst_UtilsHttpClient::wrongCredentialsEndTheRequest_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("password");
    for (const char *scheme : {"basic", "digest"}) {
        const QString path = QLatin1Char('/') + QLatin1String(scheme);
        QTest::addRow("%s, wrong password", scheme) << path << User << QStringLiteral("guess");
        QTest::addRow("%s, wrong name", scheme) << path << QStringLiteral("nobody") << Password;
        QTest::addRow("%s, none set", scheme) << path << QString() << QString();
    }
}

void tst_UtilsHttpClient::wrongCredentialsEndTheRequest()
{
    QFETCH(QString, path);
    QFETCH(QString, user);
    QFETCH(QString, password);
    Session session;
    session.client.setUserName(user);
    session.client.setUserPassword(password);
    session.client.SendUrlRequest(server->url(path));
    COMPARE_END(session, 0, false, "");
    // Qt itself gives up when the same credentials are refused again.
    constexpr int ChallengesUntilQtGivesUp = 2;
    QVERIFY(server->log().size() <= ChallengesUntilQtGivesUp);

    // The right ones are taken by the same client afterwards.
    session.client.setUserName(User);
    session.client.setUserPassword(Password);
    session.client.SendUrlRequest(server->url(path));
    COMPARE_END(session, 1, true, plainBody());
}

void tst_UtilsHttpClient::aServerThatChangesItsRealmEndsWithNothing_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("basic") << QStringLiteral("/changing/basic");
    QTest::newRow("digest") << QStringLiteral("/changing/digest");
}

void tst_UtilsHttpClient::aServerThatChangesItsRealmEndsWithNothing()
{
    QFETCH(QString, path);
    Session session;
    session.client.setUserName(User);
    session.client.setUserPassword(Password);
    session.client.SendUrlRequest(server->url(path));
    COMPARE_END(session, 0, false, "");
    // A new realm makes Qt ask for credentials anew. Nobody counts, so this ends when the server has had enough.
    QTRY_COMPARE(server->log().size(), MaxChallenges + 1);
    QCOMPARE(server->log().last(), path + QStringLiteral(" 403"));
}

void tst_UtilsHttpClient::aChallengeDiscardsWhatTheReplyHolds()
{
    Session session;
    session.client.setUserName(User);
    session.client.setUserPassword(Password);
    MadeUpReply reply("please say who you are");
    // There is no counter of attempts: every challenge gets the credentials.
    for (int attempt = 0; attempt < 20; ++attempt) {
        QAuthenticator authenticator;
        QNetworkReply *asReply = &reply;
        QAuthenticator *asAuthenticator = &authenticator;
        QVERIFY(QMetaObject::invokeMethod(&session.client, "slotProvideAuthentication", Q_ARG(QNetworkReply *, asReply),
                                          Q_ARG(QAuthenticator *, asAuthenticator)));
        QCOMPARE(authenticator.user(), User);
        QCOMPARE(authenticator.password(), Password);
        QCOMPARE(reply.bytesAvailable(), 0);
    }
    QVERIFY(session.ends.isEmpty());
}

void tst_UtilsHttpClient::aTlsErrorAbortsTheReply()
{
    Session session;
    MadeUpReply reply("");
    QNetworkReply *asReply = &reply;
    const QList<QSslError> errors{QSslError(QSslError::SelfSignedCertificate), QSslError(QSslError::HostNameMismatch)};
    QVERIFY(QMetaObject::invokeMethod(&session.client, "slotSslErrors", Q_ARG(QNetworkReply *, asReply),
                                      Q_ARG(QList<QSslError>, errors)));
    QCOMPARE(reply.aborts, 1);
    QVERIFY(session.ends.isEmpty());
}

void tst_UtilsHttpClient::aSelfSignedCertificateIsFatal()
{
    const QString openssl = QStandardPaths::findExecutable(QStringLiteral("openssl"));
    if (openssl.isEmpty())
        QSKIP("openssl, which makes the certificate of this test, is not installed.");
    if (!QSslSocket::supportsSsl())
        QSKIP("Qt has no TLS here.");
    const QTemporaryDir folder;
    const QString certificate = folder.filePath(QStringLiteral("certificate.pem"));
    const QString key = folder.filePath(QStringLiteral("key.pem"));
    QProcess maker;
    maker.start(openssl,
                {QStringLiteral("req"), QStringLiteral("-x509"), QStringLiteral("-newkey"), QStringLiteral("rsa:2048"),
                 QStringLiteral("-nodes"), QStringLiteral("-days"), QStringLiteral("2"), QStringLiteral("-subj"),
                 QStringLiteral("/CN=127.0.0.1"), QStringLiteral("-addext"),
                 QStringLiteral("subjectAltName=IP:127.0.0.1"), QStringLiteral("-keyout"), key, QStringLiteral("-out"),
                 certificate});
    QVERIFY(maker.waitForFinished(OpensslPatienceMs));
    QCOMPARE(maker.exitCode(), 0);

    WebServer tlsServer;
    QVERIFY(tlsServer.start(certificate, key));
    const QUrl url(tlsServer.url(QStringLiteral("/body")));

    // The server is all right: who knows its certificate gets the page.
    QNetworkRequest trusting(url);
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.addCaCertificates(QSslCertificate::fromPath(certificate));
    trusting.setSslConfiguration(configuration);
    QNetworkAccessManager manager;
    const std::unique_ptr<QNetworkReply> reply(manager.get(trusting));
    QTRY_VERIFY_WITH_TIMEOUT(reply->isFinished(), PatienceMs);
    QCOMPARE(reply->readAll(), plainBody());
    tlsServer.forgetLog();

    Session session;
    session.client.SendUrlRequest(url.toString());
    COMPARE_END(session, 0, false, "");
    QVERIFY(tlsServer.log().isEmpty());
}

UNIPROG_TEST_MAIN(tst_UtilsHttpClient)
#include "tst_utilshttpclient.moc"
