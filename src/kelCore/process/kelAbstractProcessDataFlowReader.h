#ifndef KELCORE_KELABSTRACTPROCESSDATAFLOWREADER_H
#define KELCORE_KELABSTRACTPROCESSDATAFLOWREADER_H

/// \file
/// Stage that replays a recorded run.

#include <kelCore/data/kelAbstractData.h>
#include <kelCore/process/kelAbstractProcess.h>

#include <QList>
#include <QString>

class kelAbstractProcessDataFlowReaderPrivate;

/// Rebuilds the data objects of a recording: those of one frame from the XML document, or all of them from
/// the binary file.
///
/// The document's elements carry no more than kelAbstractProcessDataReader reads of them: boxes are exact
/// only in the binary records. Types that are not rebuilt give null pointers in the lists. The caller owns
/// all objects. An exception of an application's stream operator passes, and leaves no object behind.
///
/// Each call for a frame parses the document. Diagnostics go to Qt's debug channel.
class KELCORE_EXPORT kelAbstractProcessDataFlowReader : public kelAbstractProcess
{
    Q_OBJECT

public:
    kelAbstractProcessDataFlowReader();
    /// Carries time stamp and parameters alone; the copy has a decoder of its own and its flag is not set.
    kelAbstractProcessDataFlowReader(const kelAbstractProcessDataFlowReader &other);
    ~kelAbstractProcessDataFlowReader() override;
    /// Calls the virtual `copy`, which carries the framework's part alone: names and flag stay as they are.
    kelAbstractProcessDataFlowReader &operator=(const kelAbstractProcessDataFlowReader &other);

    /// Sets the document's file name; false, with a debug line, when there is no such file, or a folder. The
    /// name is kept either way.
    bool setFile(const QString &fileName);
    QString getFile();
    void setDir(const QString &dir);
    QString getDir();

    /// Appends the objects of every frame of that number, in document order.
    /// \return false, with `objects` unchanged, when the document cannot be opened or parsed.
    bool getDataFlow(QList<kelAbstractData *> &objects, int frameNumber);
    /// All objects of the binary file whose path is `dir` directly followed by the document's file name; no
    /// separator is put between them. Empty when the file cannot be opened.
    QList<kelAbstractData *> getDataFlow_fromBin();

    /// All objects of the binary file whose path is `dir`.
    virtual QList<kelAbstractData *> getDataFlow();
    /// Always false.
    virtual bool HasReachedWantedStartTime();
    /// Always false.
    virtual bool HasReachedWantedStopTime();

    // For the application's own use: the default constructor sets it, and nothing in the library reads it.
    bool userFlag = false;

protected:
    /// For derived classes; leaves the flag alone.
    explicit kelAbstractProcessDataFlowReader(kelAbstractProcessDataFlowReaderPrivate &dd,
                                              QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, kelAbstractProcessDataFlowReader)
};

#endif
