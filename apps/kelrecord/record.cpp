#include "kelrecord/record.h"

#include "common/EndSignals.h"
#include "common/Program.h"
#include "common/Recording.h"
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
#include <climits>
#include <iostream>

namespace {

/// The number of the frame that follows the recording.
int numberBehind(const Recording *previous)
{
    if (!previous || previous->frames().empty())
        return 0;
    const quint32 last = previous->frames().back().number;
    if (last >= INT_MAX)
        throw Failure(QStringLiteral("%1 ends with frame %2, and no video is that long; record into another "
                                     "folder")
                          .arg(previous->documentPath(), QString::number(last)));
    return static_cast<int>(last) + 1;
}

} // namespace

void record(const Program &program, Settings settings)
{
    if (settings.show && !program.hasDisplay()) {
        settings.show = false;
        if (!settings.quiet)
            program.say(
                QStringLiteral("there is no display, so --show shows nothing; --render draws without one"));
    }
    const auto &camera = settings.view.scene.camera;
    QSharedPointer<kelAbstractDataStream> stream(new kelAbstractDataStream);
    stream->device(settings.video);
    if (camera) {
        kelAbstractDataCalibration calibration = *camera;
        stream->setCameraCalibration(calibration);
    }

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
        throw Failure(
            QStringLiteral("%1 holds no frame that can be read; does a player show it?").arg(settings.video));

    LiveView view(settings, source); // before the writer: a bad target must cost no recording
    RunWriter writer(settings.folder, settings.mode);
    const Recording *previous = writer.previous();
    const int firstNew = numberBehind(previous);
    if (previous)
        view.goOnBehind(*previous);
    const StampClock clock(settings, source, previous);

    int number = source.isCamera() ? firstNew : 0; // of the frame in hand
    const qint64 end = std::min<qint64>(source.frameCount(), qint64(firstNew) + settings.maxFrames);
    Progress progress(static_cast<int>(end), settings.quiet);
    int written = 0;
    int found = 0;
    const EndSignals stop;
    do {
        segmentation.setAcquisitionImage(acquisition.getImage());
        segmentation.segment();
        if (number >= firstNew) { // frames before it only teach the background
            blobs.setSegmentationImage(segmentation.getSegmentationImage());
            blobs.generateBlobs();
            if (camera)
                addGroundPositions(blobs.getBlobs(), *camera);
            QList<QSharedPointer<kelAbstractData>> objects;
            for (const QSharedPointer<kelDataBlob> &blob : blobs.getBlobs())
                objects.append(blob);
            const CSynchronizer stamp = clock.stamp(number);
            writer.write(stamp, objects);
            Shot shot;
            shot.picture = acquisition.getImage();
            shot.foreground = segmentation.getSegmentationImage();
            shot.blobs = blobs.getBlobs();
            view.add(stamp, shot);
            ++written;
            found += static_cast<int>(objects.size());
        }
        progress.update(++number);
    } while (!stop.caught() && !view.closed() && written < settings.maxFrames && acquisition.acquire());

    if (!settings.quiet)
        std::cout << (stop.caught() ? "interrupted; recorded " : "recorded ") << written << " frames with "
                  << found << " blobs into " << settings.folder.toStdString() << std::endl;
}
