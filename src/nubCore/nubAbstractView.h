#ifndef NUBCORE_NUBABSTRACTVIEW_H
#define NUBCORE_NUBABSTRACTVIEW_H

/// \file
/// Framework base of every view.

#include <nubCore/nubAbstractObject.h>

class QWidget;
class nubAbstractViewPrivate;

/// A view: something that shows data on a widget.
class NUBCORE_EXPORT nubAbstractView : public nubAbstractObject
{
    Q_OBJECT

public:
    explicit nubAbstractView(nubAbstractView *parent = nullptr);
    nubAbstractView(const nubAbstractView &other);
    ~nubAbstractView() override;
    nubAbstractView &operator=(const nubAbstractView &other);

    /// The widget to embed, or null where a class supplies none. The view owns it.
    virtual QWidget *widget();

protected:
    explicit nubAbstractView(nubAbstractViewPrivate &dd, QObject *parent = nullptr);

private:
    Q_DECLARE_PRIVATE_D(nub_d, nubAbstractView)
};

#endif
