#ifndef KELCORE_KELABSTRACTPROCESSPEOPLEDETECTOR_H
#define KELCORE_KELABSTRACTPROCESSPEOPLEDETECTOR_H

/// \file
/// Stage interface: finding people in a frame by their looks.

#include <kelCore/process/kelAbstractProcess.h>
#include <kelCore/process/kelProcessTypes.h>

class kelAbstractProcessPeopleDetectorPrivate;
class kelDataImage;

/// Turns a colour frame into people.
///
/// Call `setImage`, then `detectPeople`, per frame.
class KELCORE_EXPORT kelAbstractProcessPeopleDetector : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessPeopleDetector();
    /// Carries the base alone: the copy has an empty image of its own.
    kelAbstractProcessPeopleDetector(const kelAbstractProcessPeopleDetector &other);
    ~kelAbstractProcessPeopleDetector() override;

    /// Keeps the frame; its pixels are shared.
    virtual void setImage(const kelDataImage &image) = 0;
    /// Replaces the contents of `people` by the people of the frame; false when there is no frame to search.
    ///
    /// Clear the list and append to it: assigning physical objects prints a line for each.
    virtual bool detectPeople(PhysicalObjs &people) = 0;

protected:
    explicit kelAbstractProcessPeopleDetector(kelAbstractProcessPeopleDetectorPrivate &dd,
                                              QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessPeopleDetector)
};

#endif
