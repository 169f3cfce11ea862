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
/// Every operation has a default that logs a notice at level 1 and keeps nothing: a stage overrides the
/// setters, and keeps the two lists through `keepActors` and `keepEvents`.
class KELCORE_EXPORT kelAbstractProcessJsonGenerator : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessJsonGenerator();
    /// Carries the base alone: the copy has no actors and no events.
    kelAbstractProcessJsonGenerator(const kelAbstractProcessJsonGenerator &other);
    ~kelAbstractProcessJsonGenerator() override;
    /// Calls the virtual `copy`.
    kelAbstractProcessJsonGenerator &operator=(const kelAbstractProcessJsonGenerator &other) = default;

    /// Made by the copy constructor; the caller owns it. A derived stage overrides it, and `identifier`.
    kelAbstractProcessJsonGenerator *clone() override;
    /// Copies what the framework copies. Logs the slicing warning when `other` is of another kind.
    void copy(const nubAbstractObject &other) override;
    QString identifier() const override;

    /// Those of the current frame.
    virtual void setActors(ActorList actors);
    /// Those of the current frame.
    virtual void setEvents(EventList events);
    virtual void setFrameNumber(int number);
    /// Milliseconds since the beginning of 1970, UTC.
    virtual void setTimestamp(qint64 timestamp);
    /// The report, UTF-8; empty when there is none to make. Default: notice, empty.
    virtual std::string generateJsonString();

protected:
    /// What `keepActors` kept; empty until then.
    const ActorList &getActors() const;
    /// What `keepEvents` kept; empty until then.
    const EventList &getEvents() const;
    /// Replaces what `getActors` gives.
    void keepActors(ActorList actors);
    /// Replaces what `getEvents` gives.
    void keepEvents(EventList events);

    explicit kelAbstractProcessJsonGenerator(kelAbstractProcessJsonGeneratorPrivate &dd,
                                             QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessJsonGenerator)
};

#endif
