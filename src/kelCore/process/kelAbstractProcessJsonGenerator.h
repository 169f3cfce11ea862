#ifndef KELCORE_KELABSTRACTPROCESSJSONGENERATOR_H
#define KELCORE_KELABSTRACTPROCESSJSONGENERATOR_H

/// \file
/// Stage interface: reporting a frame as JSON.

#include <kelCore/process/kelAbstractProcess.h>
#include <kelCore/process/kelProcessTypes.h>

#include <QtGlobal>

#include <string>

class kelAbstractProcessJsonGeneratorPrivate;

/// Turns the actors and events of a frame into JSON text.
///
/// Call `setActors`, `setEvents`, `setFrameNumber` and `setTimestamp`, then `generateJsonString`, per frame.
///
/// Every operation has a default that logs a notice at level 1 and keeps nothing: a stage that overrides the
/// setters finds two lists to fill in its private object.
class KELCORE_EXPORT kelAbstractProcessJsonGenerator : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessJsonGenerator();
    /// Carries the base alone: the copy has no actors and no events.
    kelAbstractProcessJsonGenerator(const kelAbstractProcessJsonGenerator &other);
    ~kelAbstractProcessJsonGenerator() override;
    /// Calls the virtual `copy`.
    kelAbstractProcessJsonGenerator &operator=(const kelAbstractProcessJsonGenerator &other);

    /// Made by the copy constructor; the caller owns it.
    kelAbstractProcessJsonGenerator *clone() override;
    /// Copies what the framework copies. Logs the slicing warning when `other` is of another kind.
    void copy(const nubAbstractObject &other) override;
    QString identifier() const override;

    virtual void setActors(ActorList actors);
    virtual void setEvents(EventList events);
    virtual void setFrameNumber(int number);
    /// Milliseconds since the beginning of 1970, UTC.
    virtual void setTimestamp(qint64 timestamp);
    /// The report, UTF-8. Default: notice, empty.
    virtual std::string generateJsonString();

protected:
    explicit kelAbstractProcessJsonGenerator(kelAbstractProcessJsonGeneratorPrivate &dd,
                                             QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessJsonGenerator)
};

#endif
