#ifndef APPS_COMMON_VIEWFACTORY_H
#define APPS_COMMON_VIEWFACTORY_H

/// \file
/// Views by their settings.

#include <memory>

class FrameView;
struct ViewSettings;

std::unique_ptr<FrameView> makeView(const ViewSettings &settings);

#endif
