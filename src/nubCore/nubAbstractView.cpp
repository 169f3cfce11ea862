#include <nubCore/nubAbstractView.h>
#include <nubCore/nubAbstractView_p.h>

nubAbstractView::nubAbstractView(nubAbstractView *parent)
    : nubAbstractObject(*new nubAbstractViewPrivate, parent)
{ }

nubAbstractView::nubAbstractView(const nubAbstractView &other)
    : nubAbstractObject(*new nubAbstractViewPrivate(*other.d_func()), other.parent())
{ }

nubAbstractView::nubAbstractView(nubAbstractViewPrivate &dd, QObject *parent) : nubAbstractObject(dd, parent)
{ }

nubAbstractView::~nubAbstractView() = default;

nubAbstractView &nubAbstractView::operator=(const nubAbstractView &other)
{
    copy(other);
    return *this;
}

QWidget *nubAbstractView::widget() { return nullptr; }
