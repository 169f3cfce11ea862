#include "common/ViewFactory.h"

#include "common/OperatorView.h"
#include "common/PlainView.h"
#include "common/ViewSettings.h"

std::unique_ptr<FrameView> makeView(const ViewSettings &settings)
{
    if (settings.kind == ViewSettings::Kind::Operator)
        return std::make_unique<OperatorView>(settings.scene, settings.keys);
    return std::make_unique<PlainView>(settings.scene, settings.mask);
}
