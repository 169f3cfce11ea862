#ifndef TESTS_DATA_DATACLASSES_H
#define TESTS_DATA_DATACLASSES_H

/// \file
/// Every data class, and what the tests that hold for all of them must know of each. A new class goes into the
/// list at the end.

#include <kelCore/data/kelAbstractDataCalibrationWithDepth.h>
#include <kelCore/data/kelAbstractDataCalibrationWithDepth_p.h>
#include <kelCore/data/kelAbstractDataStream.h>
#include <kelCore/data/kelAbstractDataStream_p.h>
#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataActor_p.h>
#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataBlob_p.h>
#include <kelCore/data/kelDataContext.h>
#include <kelCore/data/kelDataContext_p.h>
#include <kelCore/data/kelDataEvent.h>
#include <kelCore/data/kelDataEvent_p.h>
#include <kelCore/data/kelDataImage.h>
#include <kelCore/data/kelDataImage_p.h>
#include <kelCore/data/kelDataLinkedPhysicalObject.h>
#include <kelCore/data/kelDataLinkedPhysicalObjectLink.h>
#include <kelCore/data/kelDataLinkedPhysicalObjectLink_p.h>
#include <kelCore/data/kelDataLinkedPhysicalObject_p.h>
#include <kelCore/data/kelDataPhysicalObject.h>
#include <kelCore/data/kelDataPhysicalObject_p.h>

#include "support/Capture.h"

#include <gtest/gtest.h>

/// Most classes are like this: a pointer to their state on top of kelAbstractData, the slicing warning once
/// from the base and once of their own, no virtual operations of their own, the base's `read` and `write`.
template <class PublicClass, class PrivateClass> struct DataClass
{
    using Class = PublicClass;
    using Private = PrivateClass;
    using Base = kelAbstractData;
    using BasePrivate = kelAbstractDataPrivate;
    /// What `copy`, as assignment calls it, takes.
    using CopyArgument = nubAbstractObject;

    static constexpr int slicingWarnings = 2; ///< that `copy` from an object of another kind logs
    static constexpr int ownOperations = 0; ///< virtual ones that the class appends
    static constexpr bool readIsTheDefault = true;
    static constexpr bool writeIsTheDefault = true;
    static QString slicing() { return slicingWarning(); }
};

struct ImageClass : DataClass<kelDataImage, kelDataImagePrivate>
{
    static constexpr bool readIsTheDefault = false;
    static constexpr bool writeIsTheDefault = false;
};

struct BlobClass : DataClass<kelDataBlob, kelDataBlobPrivate>
{
    static constexpr int slicingWarnings = 1;
};

using PhysicalObjectClass = DataClass<kelDataPhysicalObject, kelDataPhysicalObjectPrivate>;
using ActorClass = DataClass<kelDataActor, kelDataActorPrivate>;
using EventClass = DataClass<kelDataEvent, kelDataEventPrivate>;

struct ContextClass : DataClass<kelDataContext, kelDataContextPrivate>
{
    static constexpr int slicingWarnings = 1;
    static constexpr bool readIsTheDefault = false;
};

struct CalibrationClass : DataClass<kelAbstractDataCalibration, kelAbstractDataCalibrationPrivate>
{
    static constexpr int slicingWarnings = 1;
    static constexpr int ownOperations = 3;
    static constexpr bool readIsTheDefault = false;
};

struct CalibrationWithDepthClass
    : DataClass<kelAbstractDataCalibrationWithDepth, kelAbstractDataCalibrationWithDepthPrivate>
{
    using Base = kelAbstractDataCalibration;
    using BasePrivate = kelAbstractDataCalibrationPrivate;
    using CopyArgument = kelAbstractDataCalibration;
    static constexpr int slicingWarnings =
        1; // of an object that is no calibration; `copy` from one warns twice
    static constexpr int ownOperations = 3;
    static constexpr bool readIsTheDefault = false;
};

struct LinkedPhysicalObjectClass : DataClass<kelDataLinkedPhysicalObject, kelDataLinkedPhysicalObjectPrivate>
{
    static constexpr int slicingWarnings = 1;
};

struct LinkClass : DataClass<kelDataLinkedPhysicalObjectLink, kelDataLinkedPhysicalObjectLinkPrivate>
{
    using Base = nubAbstractData;
    using BasePrivate = nubAbstractDataPrivate;
    static constexpr int slicingWarnings = 1;
};

struct StreamClass : DataClass<kelAbstractDataStream, kelAbstractDataStreamPrivate>
{
    using Base = nubAbstractData;
    using BasePrivate = nubAbstractDataPrivate;
    using CopyArgument = nubAbstractData;
    static constexpr int slicingWarnings = 1;
    static constexpr int ownOperations = 13;
    static QString slicing()
    {
        return QStringLiteral("Copy can't be done at the kelAbstractDataStream level.");
    }
};

using AllDataClasses = testing::Types<ImageClass, BlobClass, PhysicalObjectClass, ActorClass, EventClass,
                                      ContextClass, CalibrationClass, CalibrationWithDepthClass,
                                      LinkedPhysicalObjectClass, LinkClass, StreamClass>;

#endif
