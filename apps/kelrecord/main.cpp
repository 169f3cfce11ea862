/// \file
/// kelrecord: records the moving blobs of a video.

#include "common/Program.h"
#include "common/Recording.h"
#include "common/Scene.h"
#include "common/VideoSource.h"
#include "kelrecord/ComponentBlobs.h"
#include "kelrecord/GroundPositions.h"
#include "kelrecord/LiveView.h"
#include "kelrecord/Mog2Segmentation.h"
#include "kelrecord/Progress.h"
#include "kelrecord/RunWriter.h"
#include "kelrecord/Settings.h"
#include "kelrecord/StampClock.h"
#include "kelrecord/VideoAcquisition.h"

#include <kelCore/data/kelAbstractDataCalibration.h>
#include <kelCore/data/kelAbstractDataStream.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataImage.h>

#include <algorithm>
#include <csignal>
#include <iostream>

namespace {

volatile std::sig_atomic_t interrupted = 0;

void interrupt(int) { interrupted = 1; }

void endOnSignals()
{
    struct sigaction action = {};
    action.sa_handler = interrupt;
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

void record(const Settings &settings)
{
    QSharedPointer<kelAbstractDataStream> stream(new kelAbstractDataStream);
    stream->device(settings.video);
    if (!settings.view.calibration.isEmpty()) {
        kelAbstractDataCalibration calibration = readCalibration(settings.view.calibration);
        stream->setCameraCalibration(calibration);
    }
    const kelAbstractDataCalibration calibration = stream->getCameraCalibration();

    VideoAcquisition acquisition;
    acquisition.setStream(stream);
    const VideoSource &source = acquisition.source();
    Mog2Segmentation segmentation;
    ComponentBlobs blobs;
    if (settings.minArea)
        blobs.setMinArea(*settings.minArea);
    if (settings.minDimension)
        blobs.setMinDimension(*settings.minDimension);

    if (!acquisition.acquire())
        throw Failure(QStringLiteral("%1 holds no frame that can be read").arg(settings.video));

    LiveView view(settings, source); // before the writer: a bad target must cost no recording
    RunWriter writer(settings.folder, settings.mode);
    const Recording *previous = writer.previous();
    if (previous)
        view.goOnBehind(*previous);
    const StampClock clock(settings, source, previous);

    const int firstNew =
        previous && !previous->frames().empty() ? int(previous->frames().back().number) + 1 : 0;
    int number = source.isCamera() ? firstNew : 0; // of the frame in hand
    const qint64 end = std::min<qint64>(source.frameCount(), qint64(firstNew) + settings.maxFrames);
    Progress progress(static_cast<int>(end), settings.quiet);
    int written = 0;
    int found = 0;
    do {
        segmentation.setAcquisitionImage(acquisition.getImage());
        segmentation.segment();
        if (number >= firstNew) { // frames before it only teach the background
            blobs.setSegmentationImage(segmentation.getSegmentationImage());
            blobs.generateBlobs();
            if (!settings.view.calibration.isEmpty())
                addGroundPositions(blobs.getBlobs(), calibration);
            QList<QSharedPointer<kelAbstractData>> objects;
            for (const QSharedPointer<kelDataBlob> &blob : blobs.getBlobs())
                objects.append(blob);
            const CSynchronizer stamp = clock.stamp(number);
            writer.write(stamp, objects);
            view.add(stamp, {acquisition.getImage(), segmentation.getSegmentationImage(), blobs.getBlobs()});
            ++written;
            found += static_cast<int>(objects.size());
        }
        progress.update(++number);
    } while (!interrupted && !view.closed() && written < settings.maxFrames && acquisition.acquire());

    if (!settings.quiet)
        std::cout << (interrupted ? "interrupted; recorded " : "recorded ") << written << " frames with "
                  << found << " blobs into " << settings.folder.toStdString() << std::endl;
}

} // namespace

int main(int argc, char **argv)
{
    endOnSignals();
    const bool wantsWindow =
        std::any_of(argv, argv + argc, [](const char *a) { return !qstrcmp(a, "--show"); });
    return runProgram("kelrecord", argc, argv, wantsWindow, [](const QStringList &arguments) {
        if (const auto settings = readSettings(arguments))
            record(*settings);
    });
}
