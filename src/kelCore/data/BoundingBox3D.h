#ifndef KELCORE_BOUNDINGBOX3D_H
#define KELCORE_BOUNDINGBOX3D_H

/// \file
/// The box of an object in the scene.

/// Six numbers that the library stores, copies and returns as one unit; what each means is agreed between the
/// stage that writes them and the one that reads them.
struct BoundingBox3D
{
    float values[6] = {};
};

#endif
