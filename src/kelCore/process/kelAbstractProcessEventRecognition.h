#ifndef KELCORE_KELABSTRACTPROCESSEVENTRECOGNITION_H
#define KELCORE_KELABSTRACTPROCESSEVENTRECOGNITION_H

/// \file
/// Stage interface: recognising what happens.

#include <kelCore/process/kelAbstractProcess.h>
#include <kelCore/process/kelProcessTypes.h>

#include <string>

class kelAbstractProcessEventRecognitionPrivate;

/// Turns the actors of a frame into events.
///
/// Call `setCommonFilePath`, `setParameterFile` and `init` once; then, per frame, `setActors` and
/// `recognizeEvents`, in the order of the frames. After it `getCurrentFrameEvents` gives the events of the
/// frame, and the two texts can be stored and sent; `getAllFramesEvents` gives those of the whole run.
class KELCORE_EXPORT kelAbstractProcessEventRecognition : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessEventRecognition();
    /// Carries actors and events, which are shared.
    kelAbstractProcessEventRecognition(const kelAbstractProcessEventRecognition &other);
    ~kelAbstractProcessEventRecognition() override;
    /// Calls the virtual `copy`.
    kelAbstractProcessEventRecognition &operator=(const kelAbstractProcessEventRecognition &other) = default;

    /// Replaces the actors of the frame before.
    virtual void setActors(ActorList actors);
    /// A copy of the list of events that `recognizeEvents` gave, sharing the events.
    virtual EventList getCurrentFrameEvents();
    /// Default: none; the stage keeps no events of earlier frames by itself.
    virtual EventList getAllFramesEvents();
    /// Replaces the events by those of the actors; no actors, or nothing recognised, give none. False when
    /// the stage cannot work, for want of parameters for instance.
    virtual bool recognizeEvents() = 0;
    /// Reads the stage's parameters. Default: notice at level 1, nothing kept.
    virtual void setParameterFile(const std::string &file);
    /// Whether the events are to be saved as XML. Default: true.
    virtual bool getParamSaveXML1File();
    /// Name of the file they are to be saved in. Default: empty.
    virtual std::string getParamXML1FileName();
    /// Makes the stage ready for the first frame. Default: nothing.
    virtual void init();
    /// Where files that the parameters name are looked for. Default: notice at level 1, nothing kept.
    virtual void setCommonFilePath(const std::string &path);
    /// The events as text to store. Default: empty.
    virtual std::string generateEventListStorageStream();
    /// The events as text to send. Default: empty.
    virtual std::string generateEventListStreamToNotify();

protected:
    /// The actors of the current frame; empty until set.
    const ActorList &getActors() const;
    /// Replaces what `getCurrentFrameEvents` gives.
    void setCurrentFrameEvents(EventList events);

    explicit kelAbstractProcessEventRecognition(kelAbstractProcessEventRecognitionPrivate &dd,
                                                QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessEventRecognition)
};

#endif
