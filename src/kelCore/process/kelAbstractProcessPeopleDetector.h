#ifndef KELCORE_KELABSTRACTPROCESSPEOPLEDETECTOR_H
#define KELCORE_KELABSTRACTPROCESSPEOPLEDETECTOR_H

/// \file
/// Stage interface: finding people in a frame by their looks.

#include <kelCore/data/kelDataImage.h>
#include <kelCore/process/kelAbstractProcess.h>
#include <kelCore/process/kelProcessTypes.h>

class kelAbstractProcessPeopleDetectorPrivate;

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
    /// Calls the virtual `copy`.
    kelAbstractProcessPeopleDetector &operator=(const kelAbstractProcessPeopleDetector &other) = default;

    /// The frame to search. A stage keeps it, through `keepImage`, or what it makes of it.
    virtual void setImage(const kelDataImage &image) = 0;
    /// Replaces the contents of `people` by the people of the frame, with their boxes in the image; nobody
    /// there gives none. False when there is no frame to search.
    ///
    /// Clear the list and append to it: assigning physical objects prints a line for each.
    virtual bool detectPeople(PhysicalObjs &people) = 0;

protected:
    /// What `keepImage` kept; without pixels until then.
    const kelDataImage &getImage() const;
    /// Replaces the pixels that `getImage` gives by those of `image`, shared.
    void keepImage(const kelDataImage &image);

    explicit kelAbstractProcessPeopleDetector(kelAbstractProcessPeopleDetectorPrivate &dd,
                                              QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessPeopleDetector)
};

#endif
