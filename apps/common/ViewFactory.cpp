#include "common/ViewFactory.h"

#include "common/OperatorView.h"
#include "common/PlainView.h"
#include "common/Scene.h"
#include "common/ViewSettings.h"

std::unique_ptr<FrameView> makeView(const ViewSettings &settings)
{
    const Scene scene(settings.calibration, settings.context);
    if (settings.kind == ViewSettings::Kind::Operator)
        return std::make_unique<OperatorView>(scene, settings.keys);
    return std::make_unique<PlainView>(scene, settings.mask);
}
