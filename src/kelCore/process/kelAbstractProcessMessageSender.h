#ifndef KELCORE_KELABSTRACTPROCESSMESSAGESENDER_H
#define KELCORE_KELABSTRACTPROCESSMESSAGESENDER_H

/// \file
/// Stage interface: sending reports away.

#include <kelCore/process/kelAbstractProcess.h>

#include <string>

class kelAbstractProcessMessageSenderPrivate;

/// Sends texts, a frame's JSON for instance, to whoever listens.
///
/// Call `setParameterFile` once, then `sendMsg` per message, which reports no failure. Both have defaults
/// that log a notice at level 1; nothing is sent.
class KELCORE_EXPORT kelAbstractProcessMessageSender : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessMessageSender();
    /// Carries the base alone: there is nothing else.
    kelAbstractProcessMessageSender(const kelAbstractProcessMessageSender &other);
    ~kelAbstractProcessMessageSender() override;
    /// Calls the virtual `copy`.
    kelAbstractProcessMessageSender &operator=(const kelAbstractProcessMessageSender &other) = default;

    /// Made by the copy constructor; the caller owns it. A derived stage overrides it, and `identifier`.
    kelAbstractProcessMessageSender *clone() override;
    /// Copies what the framework copies. Logs the slicing warning when `other` is of another kind.
    void copy(const nubAbstractObject &other) override;
    QString identifier() const override;

    /// Reads where to send to; false when the file says nothing usable. Default: notice, false.
    virtual bool setParameterFile(std::string file);
    /// Sends a text, UTF-8, or leaves it to be sent. Default: notice, nothing is sent.
    virtual void sendMsg(std::string message);

protected:
    explicit kelAbstractProcessMessageSender(kelAbstractProcessMessageSenderPrivate &dd,
                                             QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessMessageSender)
};

#endif
