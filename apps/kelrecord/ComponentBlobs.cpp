#include "kelrecord/ComponentBlobs.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <tuple>
#include <vector>

bool ComponentBlobs::generateBlobs()
{
    getBlobs().clear();
    const QSharedPointer<kelDataImage> &mask = getSegmentationImage();
    if (!mask || mask->getImage().empty())
        return false;

    cv::Mat labels, stats, centroids;
    const int count = cv::connectedComponentsWithStats(mask->getImage(), labels, stats, centroids, 8);
    std::vector<cv::Rect> boxes;
    for (int i = 1; i < count; ++i) { // 0 is the background
        const int *s = stats.ptr<int>(i);
        const cv::Rect box(s[cv::CC_STAT_LEFT], s[cv::CC_STAT_TOP], s[cv::CC_STAT_WIDTH],
                           s[cv::CC_STAT_HEIGHT]);
        if (s[cv::CC_STAT_AREA] >= getMinArea() && std::min(box.width, box.height) >= getMinDimension())
            boxes.push_back(box);
    }
    std::sort(boxes.begin(), boxes.end(), [](const cv::Rect &a, const cv::Rect &b) {
        return std::tie(a.y, a.x, a.height, a.width) < std::tie(b.y, b.x, b.height, b.width);
    });
    for (const cv::Rect &box : boxes) {
        QSharedPointer<kelDataBlob> blob(new kelDataBlob);
        blob->setBoundingBox2D(box);
        blob->setBoundingBox2D_qt(QRect(box.x, box.y, box.width, box.height));
        getBlobs().append(blob);
    }
    return true;
}
