/// \file
/// Raw depth files, as calibrations with depth load them.

#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>

#include "data/DepthCalibration.h"
#include "support/Capture.h"
#include "support/Matrices.h"
#include "support/TemporaryFolder.h"

#include <cstdint>
#include <limits>

namespace {

const char successLine[] = "Depth RAW file read successfully\n";

QByteArray rawBytes(std::int32_t rows, std::int32_t columns, const cv::Mat &map)
{
    QByteArray bytes(reinterpret_cast<const char *>(&rows), sizeof rows);
    bytes.append(reinterpret_cast<const char *>(&columns), sizeof columns);
    for (int r = 0; r < map.rows; ++r)
        bytes.append(reinterpret_cast<const char *>(map.ptr(r)), map.cols * static_cast<int>(map.elemSize()));
    return bytes;
}

class kelAbstractDataCalibrationWithDepthFileTest : public TemporaryFolder
{
protected:
    static void load(Depth &calibration, const QString &file)
    {
        OutputCapture output;
        calibration.setDepthInformation(file);
        EXPECT_EQ(output.take(), successLine);
    }
    static void expectRefused(Depth &calibration, const QString &file)
    {
        const cv::Mat before = calibration.getDepthInformation();
        const cv::Mat content = before.clone();
        OutputCapture output;
        EXPECT_THROW(calibration.setDepthInformation(file), cv::Exception);
        EXPECT_EQ(output.take(), "");
        EXPECT_EQ(calibration.getDepthInformation().data, before.data);
        EXPECT_TRUE(sameMatrix(calibration.getDepthInformation(), content));
    }
};

} // namespace

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, LoadsAMapOfItsOwnSize)
{
    const cv::Mat map = numbered(480, 640);
    write("depth.raw", rawBytes(480, 640, map));
    Depth calibration;
    load(calibration, "depth.raw");
    EXPECT_TRUE(sameMatrix(calibration.getDepthInformation(), map));
    EXPECT_EQ(calibration.depthVal(3, 2), 1284);
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, TakesTheRowsOfTheFile)
{
    for (const int rows : {2, 479, 481, 600}) {
        const cv::Mat map = numbered(rows, 640);
        write("depth.raw", rawBytes(rows, 640, map) + "what follows is ignored");
        Depth calibration;
        load(calibration, "depth.raw");
        EXPECT_TRUE(sameMatrix(calibration.getDepthInformation(), map)) << rows;
    }
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, NoRowsLeaveNoMap)
{
    write("depth.raw", rawBytes(0, 640, cv::Mat()));
    Depth calibration;
    load(calibration, "depth.raw");
    EXPECT_EQ(calibration.getDepthInformation().rows, 0);
    EXPECT_EQ(calibration.getDepthInformation().cols, 640);
    EXPECT_EQ(calibration.getDepthInformation().type(), CV_32F);

    write("depth.raw", rawBytes(2, 640, numbered(2, 640)));
    load(calibration, "depth.raw");
    EXPECT_TRUE(sameMatrix(calibration.getDepthInformation(), numbered(2, 640)));
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, NoRowsOfANarrowerFileLeaveNoMapEither)
{
    for (const int columns : {0, 2, -1}) {
        write("depth.raw", rawBytes(0, columns, cv::Mat()));
        Depth calibration;
        load(calibration, "depth.raw");
        EXPECT_EQ(calibration.getDepthInformation().size(), cv::Size(640, 0)) << columns;
        EXPECT_EQ(calibration.getDepthInformation().type(), CV_32F);
    }
    const cv::Mat part = numbered(3, 2);
    write("depth.raw", rawBytes(3, 2, part));
    Depth calibration;
    calibration.setDepthInformation(cv::Mat(0, 4, CV_32F));
    load(calibration, "depth.raw");
    cv::Mat expected = cv::Mat::zeros(3, 4, CV_32F);
    part.copyTo(expected.colRange(0, 2));
    EXPECT_TRUE(sameMatrix(calibration.getDepthInformation(), expected));
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, AMapInWiderRowsIsFilledRowByRow)
{
    write("depth.raw", rawBytes(3, 4, numbered(3, 4, 50)));
    Depth calibration;
    calibration.setDepthInformation(numbered(6, 9)(cv::Rect(2, 1, 4, 3)));
    load(calibration, "depth.raw");
    EXPECT_TRUE(sameMatrix(calibration.getDepthInformation(), numbered(3, 4, 50)));
    EXPECT_EQ(calibration.getDepthInformation().ptr<float>()[4], 16); // beside the map
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, AnyFloatIsTakenAsItStands)
{
    cv::Mat map = numbered(1, 4);
    map.at<float>(0, 0) = -0.0f;
    map.at<float>(0, 1) = std::numeric_limits<float>::quiet_NaN();
    map.at<float>(0, 2) = std::numeric_limits<float>::infinity();
    map.at<float>(0, 3) = std::numeric_limits<float>::denorm_min();
    write("depth.raw", rawBytes(1, 4, map));
    Depth calibration;
    calibration.setDepthInformation(cv::Mat(3, 4, CV_32F));
    load(calibration, "depth.raw");
    EXPECT_TRUE(sameMatrix(calibration.getDepthInformation(), map));
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, AMissingFileLeavesTheMapAndPrintsTheLineAllTheSame)
{
    Depth calibration;
    calibration.setDepthInformation(numbered(2, 3));
    const void *before = calibration.getDepthInformation().data;
    load(calibration, "missing.raw");
    EXPECT_EQ(calibration.getDepthInformation().data, before);
    EXPECT_TRUE(sameMatrix(calibration.getDepthInformation(), numbered(2, 3)));
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, ElementsThatAShortFileLeavesOutAreMinusOne)
{
    const cv::Mat map = numbered(4, 5);
    const QByteArray whole = rawBytes(4, 5, map);
    for (int length = 8; length <= whole.size(); ++length) {
        write("depth.raw", whole.left(length));
        Depth calibration;
        calibration.setDepthInformation(cv::Mat(7, 5, CV_32F, cv::Scalar(9)));
        load(calibration, "depth.raw");
        cv::Mat expected = map.clone();
        for (int i = (length - 8) / 4; i < 20; ++i)
            expected.at<float>(i / 5, i % 5) = -1;
        EXPECT_TRUE(sameMatrix(calibration.getDepthInformation(), expected)) << length;
    }
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, AFileNarrowerThanTheMapKeepsTheOtherColumns)
{
    const cv::Mat part = numbered(3, 2, 100);
    write("depth.raw", rawBytes(3, 2, part));
    for (const int rows : {2, 3, 5}) {
        Depth calibration;
        calibration.setDepthInformation(numbered(rows, 4));
        load(calibration, "depth.raw");
        cv::Mat expected = cv::Mat::zeros(3, 4, CV_32F);
        const cv::Range kept(0, std::min(rows, 3));
        numbered(rows, 4).rowRange(kept).copyTo(expected.rowRange(kept));
        part.copyTo(expected.colRange(0, 2));
        EXPECT_TRUE(sameMatrix(calibration.getDepthInformation(), expected)) << rows;
    }
    write("depth.raw", rawBytes(3, 2, part).left(8 + 4 * 3));
    Depth calibration;
    calibration.setDepthInformation(numbered(3, 4));
    load(calibration, "depth.raw");
    const cv::Mat expected =
        (cv::Mat_<float>(3, 4) << 100, 101, 3, 4, /**/ 102, -1, 7, 8, /**/ -1, -1, 11, 12);
    EXPECT_TRUE(sameMatrix(calibration.getDepthInformation(), expected));
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, AFileWithoutColumnsChangesTheRowsOnly)
{
    for (const int columns : {0, -1, -2147483647 - 1}) {
        write("depth.raw", rawBytes(1, columns, numbered(1, 3, 50)));
        Depth calibration;
        calibration.setDepthInformation(numbered(2, 3));
        load(calibration, "depth.raw");
        EXPECT_TRUE(sameMatrix(calibration.getDepthInformation(), numbered(1, 3))) << columns;
    }
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, AFileWiderThanTheMapChangesNothing)
{
    for (const int columns : {4, 640, 2147483647}) {
        write("depth.raw", rawBytes(2, columns, numbered(2, 4)));
        Depth calibration;
        calibration.setDepthInformation(numbered(5, 3));
        const void *before = calibration.getDepthInformation().data;
        load(calibration, "depth.raw");
        EXPECT_EQ(calibration.getDepthInformation().data, before);
        EXPECT_TRUE(sameMatrix(calibration.getDepthInformation(), numbered(5, 3)));
    }
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, AMapThatDoesNotHoldFloatsStays)
{
    write("depth.raw", rawBytes(2, 3, numbered(2, 3)));
    const int sizes[] = {2, 3, 4};
    for (const cv::Mat &map :
         {cv::Mat(4, 3, CV_16U, cv::Scalar(7)), cv::Mat(4, 3, CV_64F, cv::Scalar(7)),
          cv::Mat(4, 3, CV_32FC2, cv::Scalar(7, 7)), cv::Mat(), cv::Mat(3, sizes, CV_32F, cv::Scalar(7))}) {
        Depth calibration;
        calibration.setDepthInformation(map);
        load(calibration, "depth.raw");
        EXPECT_EQ(calibration.getDepthInformation().data, map.data);
        EXPECT_EQ(calibration.getDepthInformation().rows, map.rows);
        EXPECT_EQ(calibration.getDepthInformation().type(), map.type());
    }
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, AHeaderThatIsShortOrNegativeThrowsBeforeAnythingChanges)
{
    const QByteArray whole = rawBytes(480, 640, numbered(480, 640));
    for (int length = 0; length < 8; ++length) {
        write("depth.raw", whole.left(length));
        Depth calibration;
        expectRefused(calibration, "depth.raw");
    }
    for (const int rows : {-1, -2, -2147483647 - 1}) {
        for (const int columns : {640, 641, -1}) {
            write("depth.raw", rawBytes(rows, columns, numbered(2, 640)));
            Depth calibration;
            expectRefused(calibration, "depth.raw");
        }
    }
    QDir().mkdir("folder");
    Depth calibration;
    expectRefused(calibration, "folder");
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, RowsThatNoMemoryHoldsThrow)
{
    // Rows wide enough for no address space to hold them all.
    write("depth.raw", rawBytes(2147483647, 1000000, cv::Mat()));
    Depth calibration;
    calibration.setDepthInformation(cv::Mat(1, 1000000, CV_32F, cv::Scalar(9)));
    expectRefused(calibration, "depth.raw");
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, LoadingGivesTheObjectABufferOfItsOwn)
{
    write("depth.raw", rawBytes(2, 3, numbered(2, 3, 50)));
    const cv::Mat callers = numbered(2, 3);
    Depth calibration;
    calibration.setDepthInformation(callers);
    const Depth copy(calibration);
    load(calibration, "depth.raw");
    EXPECT_TRUE(sameMatrix(calibration.getDepthInformation(), numbered(2, 3, 50)));
    EXPECT_TRUE(sameMatrix(callers, numbered(2, 3)));
    EXPECT_EQ(copy.getDepthInformation().data, callers.data);

    // The same with memory that OpenCV does not count references of, or counts elsewhere, and with one copy
    // only.
    float memory[6] = {};
    calibration.setDepthInformation(cv::Mat(2, 3, CV_32F, memory));
    load(calibration, "depth.raw");
    EXPECT_EQ(memory[0], 0);
    const cv::UMat device(2, 3, CV_32F, cv::Scalar(7));
    calibration.setDepthInformation(device.getMat(cv::ACCESS_READ));
    load(calibration, "depth.raw");
    EXPECT_EQ(device.getMat(cv::ACCESS_READ).at<float>(0, 0), 7);
    const Depth other(calibration);
    write("depth.raw", rawBytes(2, 3, numbered(2, 3, 90)));
    load(calibration, "depth.raw");
    EXPECT_TRUE(sameMatrix(other.getDepthInformation(), numbered(2, 3, 50)));
    EXPECT_TRUE(sameMatrix(calibration.getDepthInformation(), numbered(2, 3, 90)));
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, AMapThatNobodySharesIsReused)
{
    write("depth.raw", rawBytes(480, 640, numbered(480, 640)));
    Depth calibration;
    const void *before = calibration.getDepthInformation().data;
    load(calibration, "depth.raw");
    EXPECT_EQ(calibration.getDepthInformation().data, before);
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, FileNamesMayHoldAnyCharacters)
{
    const QString name = QString::fromUtf8("profondeur \xc3\xa9.raw");
    write(name, rawBytes(2, 640, numbered(2, 640)));
    Depth calibration;
    load(calibration, name);
    EXPECT_EQ(calibration.getDepthInformation().rows, 2);
}

TEST_F(kelAbstractDataCalibrationWithDepthFileTest, RowsThatTheFileOnlyClaimsAreThereAndMinusOne)
{
    write("depth.raw", rawBytes(400000, 640, cv::Mat()));
    Depth calibration;
    load(calibration, "depth.raw");
    EXPECT_EQ(calibration.getDepthInformation().size(), cv::Size(640, 400000));
    EXPECT_EQ(calibration.depthVal(0, 0), -1);
    EXPECT_EQ(calibration.depthVal(639, 399999), -1);
    write("depth.raw", rawBytes(2, 640, numbered(2, 640)));
    load(calibration, "depth.raw");
    EXPECT_TRUE(sameMatrix(calibration.getDepthInformation(), numbered(2, 640)));
}
