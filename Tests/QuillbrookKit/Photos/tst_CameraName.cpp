#include "Photos/CameraName.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;

class TestCameraName : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void usualFormsTellTheMoment_data()
    {
        QTest::addColumn<QByteArray>("name");
        for (const char *name :
            { "IMG_20190704_153012.jpg", "IMG_20190704_153012345.jpg", "IMG_20190704_153012_1.jpg",
                "VID_20190704_153012.mp4", "VID_20190704_153012345.mp4", "MVIMG_20190704_153012.jpg",
                "PANO_20190704_153012.jpg", "IMG20190704153012.jpg", "VID20190704153012.mp4",
                "BURST20190704153012.jpg", "BURST20190704153012345.jpg",
                "00001IMG_00001_BURST20190704153012.jpg", "00000IMG_00000_BURST20190704153012345_COVER.jpg",
                "DSC_0052_BURST20190704153012345_COVER.JPG", "DSCPDC_0001_BURST20190704153012345.JPG",
                "IMG_20190704_153012345_BURST000_COVER.jpg", "WP_20190704_15_30_12_Pro.jpg",
                "C360_2019-07-04-15-30-12-345.jpg", "IMG_2019-07-04-15-30-12.jpg", "DJI_20190704_153012.JPG",
                "DJI_20190704153012_0001_D.JPG", "20190704_153012.jpg", "20190704_153012(0).jpg",
                "2019-07-04 15.30.12.jpg", "2019-07-04 15.30.12-1.jpg", "2019-07-04 15-30-12.png",
                "2019-07-04_15-30-12.jpg", "2019-07-04_15.30.12.jpg", "photo_2019-07-04_15-30-12.jpg",
                "video_2019-07-04_15-30-12.mp4", "signal-2019-07-04-153012.jpg",
                "signal-2019-07-04-15-30-12.jpg", "signal-2019-07-04-15-30-12-345.jpg",
                "WhatsApp Image 2019-07-04 at 15.30.12.jpeg", "WhatsApp Video 2019-07-04 at 15.30.12 (1).mp4",
                "Screenshot_20190704-153012.png", "Screenshot_20190704_153012.png",
                "Screenshot_2019-07-04-15-30-12-345.png", "P_20190704_153012.jpg", "P_20190704_153012_BF.jpg",
                "WhatsApp Image 2019-07-04 at 3.30.12 PM.jpeg", "Screenshot 2019-07-04 153012.png",
                "Screenshot 2019-07-04 at 15.30.12.png", "Screenshot 2019-07-04 at 3.30.12\u202fPM.png",
                "Screen Shot 2019-07-04 at 3.30.12 PM (2).png", "Screen Recording 2019-07-04 at 15.30.12.mov",
                "Screenshot from 2019-07-04 15-30-12.png", "Screencast from 2019-07-04 15-30-12.webm",
                "IMG_20190704_153012", "IMG_20190704_153012.jpg.xmp" })
            QTest::newRow(name) << QByteArray(name);
    }

    void usualFormsTellTheMoment()
    {
        QFETCH(QByteArray, name);
        QCOMPARE(CameraName::moment(name.toStdString()),
            (CameraMoment{ .year = 2019, .month = 7, .day = 4, .hour = 15, .minute = 30, .second = 12 }));
    }

    void someTellADayOrAnotherClock()
    {
        const CameraMoment day{ .year = 2019, .month = 7, .day = 4 };
        QCOMPARE(CameraName::moment("IMG-20190704-WA0001.jpg"), day);
        QCOMPARE(CameraName::moment("VID-20190704-WA0001.mp4"), day);
        QCOMPARE(CameraName::moment("PXL_20190704_153012345.jpg"),
            (CameraMoment{
                .year = 2019, .month = 7, .day = 4, .hour = 15, .minute = 30, .second = 12, .isUtc = true }));
    }

    void hourMayBeOfAHalfOfTheDay_data()
    {
        QTest::addColumn<QByteArray>("told");
        QTest::addColumn<int>("hour");
        QTest::newRow("the first of the night") << QByteArray("12.05.00 AM") << 0;
        QTest::newRow("morning") << QByteArray("11.05.00 AM") << 11;
        QTest::newRow("noon") << QByteArray("12.05.00 PM") << 12;
        QTest::newRow("evening") << QByteArray("11.05.00 PM") << 23;
        QTest::newRow("not told") << QByteArray("11.05.00") << 11;
        QTest::newRow("another word") << QByteArray("11.05.00 PAN") << 11;
        QTest::newRow("no such hour") << QByteArray("13.05.00 PM") << -1;
    }

    void hourMayBeOfAHalfOfTheDay()
    {
        QFETCH(QByteArray, told);
        const auto moment
            = CameraName::moment("WhatsApp Image 2019-07-04 at " + told.toStdString() + ".jpeg");
        QTEST(moment ? moment->hour : -1, "hour");
    }

    void otherNamesTellNothing_data()
    {
        QTest::addColumn<QByteArray>("name");
        for (const char *name :
            { "", "IMG_0001.JPG", "DSC01234.ARW", "holiday 2019-07-04.jpg", "20190704.jpg",
                "IMG_20191304_153012.jpg", "IMG_20190230_153012.jpg", "IMG_20190704_243012.jpg",
                "IMG_20190704_156012.jpg", "IMG_19690704_153012.jpg", "IMG_20190704_1530.jpg",
                "20190704_1530123.jpg", "IMG_00001_BURST20190704153012.jpg", "DSC_BURST20190704153012.jpg",
                "img_20190704_153012.jpg", "xIMG_20190704_153012.jpg", "IMG_2019070",
                "IMG_\xd9\xa2\xd9\xa0"
                "190704_153012.jpg" })
            QTest::newRow(*name != '\0' ? name : "empty") << QByteArray(name);
    }

    void otherNamesTellNothing()
    {
        QFETCH(QByteArray, name);
        QVERIFY(!CameraName::moment(name.toStdString()));
    }

    void clockFollowsTheTimeZone_data()
    {
        QTest::addColumn<QByteArray>("name");
        // In Berlin the clock goes forward on 31 March and back on 27 October 2019.
        for (const char *name : { "20190115_120000", "20190704_235959", "20190331_013000", "20190331_033000",
                 "20191027_013000", "20191027_043000", "20190704_000000", "20160229_120000" })
            QTest::newRow(name) << QByteArray(name);
    }

    void clockFollowsTheTimeZone()
    {
        QFETCH(QByteArray, name);
        qputenv("TZ", "Europe/Berlin");
        const auto moment = *CameraName::moment(name.toStdString());
        const auto expected
            = QDateTime::fromString(QString::fromLatin1(name), QStringLiteral("yyyyMMdd_HHmmss"));
        MomentClock clock;
        QCOMPARE(clock.seconds(moment), expected.toSecsSinceEpoch());
        QCOMPARE(clock.seconds(moment), expected.toSecsSinceEpoch());
        auto utc = moment;
        utc.isUtc = true;
        QCOMPARE(clock.seconds(utc), QDateTime(expected.date(), expected.time(), Qt::UTC).toSecsSinceEpoch());
    }
};

QUILLBROOK_SUITE(TestCameraName, NoApplication)
#include "tst_CameraName.moc"
