#ifndef KELCORE_KELDATAEVENT_H
#define KELCORE_KELDATAEVENT_H

/// \file
/// One recognised event.

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/data/kelAbstractData.h>

#include <string>

class kelDataEventPrivate;

/// What happened, when, how alarming and how certain it is, and which actor was involved.
///
/// Begin, end and duration are stored as given and independently of one another: nothing checks that the end
/// follows the beginning or that the duration agrees with the two. Duration, latency and confidence are in
/// whatever units the recognising stage uses; texts are free.
///
/// The copy constructor, `copy` and assignment all carry every field; of the base, only the copy constructor
/// carries the specific properties, and nothing carries the recorded map.
class KELCORE_EXPORT kelDataEvent : public kelAbstractData
{
    Q_OBJECT

public:
    /// Empty texts, default time stamps, numbers 0; no actor (-1).
    kelDataEvent();
    kelDataEvent(const kelDataEvent &other);
    ~kelDataEvent() override;
    /// Calls the virtual `copy`.
    kelDataEvent &operator=(const kelDataEvent &other);

    kelDataEvent *clone() override;
    /// When `other` is of another kind, the slicing warning is logged twice (once by the base) and nothing of
    /// this class is copied.
    void copy(const nubAbstractObject &other) override;
    QString identifier() const override;

    std::string getSEDAlarmLevel() const;
    void setSEDAlarmLevel(std::string level);
    const CSynchronizer &getSEDBegin() const;
    void setSEDBegin(const CSynchronizer &begin);
    double getSEDConfidence() const;
    void setSEDConfidence(double confidence);
    double getSEDDuration() const;
    void setSEDDuration(double duration);
    const CSynchronizer &getSEDEnd() const;
    void setSEDEnd(const CSynchronizer &end);
    unsigned int getSEDId() const;
    void setSEDId(unsigned int id);
    double getSEDLatency() const;
    void setSEDLatency(double latency);
    std::string getSEDName() const;
    void setSEDName(std::string name);
    std::string getSEDType() const;
    void setSEDType(std::string type);
    /// -1 until set.
    int getInvolvedActorId() const;
    void setInvolvedActorId(int id);

protected:
    explicit kelDataEvent(kelDataEventPrivate &dd, QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelDataEvent)
};

#endif
