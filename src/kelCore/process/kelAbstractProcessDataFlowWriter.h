#ifndef KELCORE_KELABSTRACTPROCESSDATAFLOWWRITER_H
#define KELCORE_KELABSTRACTPROCESSDATAFLOWWRITER_H

/// \file
/// Stage that records a run, frame by frame.

#include <kelCore/data/kelAbstractData.h>
#include <kelCore/process/kelAbstractProcess.h>

#include <QDomElement>
#include <QFile>
#include <QList>
#include <QSharedPointer>

class kelAbstractProcessDataFlowWriterPrivate;

/// Records the data flow of a run into one XML document, and through kelAbstractProcessDataWriter each data
/// object into the binary file "dataflow.dat" in the working directory.
///
///     kelAbstractProcessDataFlowWriter writer;  // waits for one character on standard input
///     writer.setFilePath(QFile("run.xml"));
///     // per frame:
///     writer.setSynchronizer(stamp);
///     writer.setDataFlow(objects);
///     writer.writeDataFlow();
///
/// The document on disk is the state: each frame parses and rewrites it whole, so that it is complete after
/// every frame and a later run goes on behind an earlier one. The cost of a frame grows linearly with the
/// frames already written. The file is replaced in one step: whenever the process ends, the document parses
/// and holds every frame that was reported saved. The records of a frame are appended before the document is
/// rewritten; they are handed to the system, not synced to the disk, and a record that could not be appended
/// keeps its element in the document.
///
/// What has no folder entry of its own alone (a device, a FIFO, a file with several hard links) is written
/// into, as is a file in a folder that takes no second one: there the replacement is not one step.
///
/// The data list is not cleared after writing: a frame without a new list repeats the previous objects.
///
/// Diagnostics go to Qt's debug channel.
class KELCORE_EXPORT kelAbstractProcessDataFlowWriter : public kelAbstractProcess
{
    Q_OBJECT

public:
    /// Prints "forcing param" on standard output and waits until one character, or the end of the input, can
    /// be read from standard input: deliberate. Sets the four settings below.
    kelAbstractProcessDataFlowWriter();
    /// Carries the file name and shares the data list, the encoder and the document. Neither prints nor
    /// waits, and leaves the settings alone.
    kelAbstractProcessDataFlowWriter(const kelAbstractProcessDataFlowWriter &other);
    ~kelAbstractProcessDataFlowWriter() override;
    /// Calls the virtual `copy`, which carries the framework's part alone: file name, data list, document and
    /// settings stay as they are.
    kelAbstractProcessDataFlowWriter &operator=(const kelAbstractProcessDataFlowWriter &other);

    /// Takes the name of `file` as the document's path; nothing is opened.
    void setFilePath(const QFile &file);
    /// The writer's own file object.
    QFile &getFilePath();

    /// Replaces the frame's data objects.
    virtual void setDataFlow(const QList<QSharedPointer<kelAbstractData>> &list);
    /// Appends one data object.
    virtual void setDataFlow(const QSharedPointer<kelAbstractData> &data);
    /// Adds one frame for the current time stamp and data list, skipping null pointers, and rewrites the
    /// document, which is created where there is none.
    /// \return false when the document cannot be parsed; nothing is written then. True otherwise, also when
    ///         the document could not be rewritten and the frame is lost ("frame saved" is then not reported).
    virtual bool writeDataFlow();

    /// A "Synchronization" element with the parts of the time stamp, attached to nothing. Each number is
    /// written as an unsigned 32-bit one: the time of a null date-time as 4294967295.
    QDomElement setTimeStampElement();
    /// Writes a new, empty document to the path, replacing what was there. Stops silently when it cannot.
    void xmlGen();

    // Settings for the application's own use: the constructor forces them to true, 1, 1 and false, and
    // nothing in the library reads them.
    bool userFlag1 = false;
    int userValue1 = 0;
    int userValue2 = 0;
    bool userFlag2 = false;

protected:
    /// For derived classes. Neither prints nor waits nor sets the settings: what a class that derives from this
    /// one does when it is made is its own to say.
    explicit kelAbstractProcessDataFlowWriter(kelAbstractProcessDataFlowWriterPrivate &dd,
                                              QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessDataFlowWriter)
};

#endif
