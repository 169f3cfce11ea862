#ifndef TESTS_SUPPORT_STAGE_H
#define TESTS_SUPPORT_STAGE_H

/// \file
/// What the tests of the stages share.

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/process/kelAbstractProcess.h>
#include <kelCore/process/kelAbstractProcess_p.h>

#include "support/VirtualSlot.h"

#include <gtest/gtest.h>

#include <QMetaObject>
#include <QSharedPointer>

#include <type_traits>
#include <vector>

/// A stage whose private object the tests look into, as a plug-in does.
template <class Stage, class Private> class Opened : public Stage
{
public:
    Private &d() { return static_cast<Private &>(*this->nub_d); }
};

/// A stage is a class of its own name, derived from the base alone, as its private class is, and without signals,
/// slots or properties.
template <class Stage, class Private> void expectStage(const QString &name)
{
    const QMetaObject &meta = Stage::staticMetaObject;
    EXPECT_EQ(meta.className(), name);
    EXPECT_EQ(meta.superClass(), &kelAbstractProcess::staticMetaObject);
    EXPECT_EQ(meta.methodCount(), QObject::staticMetaObject.methodCount());
    EXPECT_EQ(meta.propertyCount(), QObject::staticMetaObject.propertyCount());
    EXPECT_TRUE((std::is_base_of<kelAbstractProcessPrivate, Private>::value));
    EXPECT_TRUE(std::has_virtual_destructor<Private>::value);
}

/// `Stage` appends to the operations of the base those in these slots, in this order, and no others.
template <class Stage> void expectAppended(const std::vector<int> &order)
{
    struct Next : Stage
    {
        virtual void behindAllOthers() { }
    };
    int expected = slot(&kelAbstractProcess::setSpecificParameters);
    for (const int place : order)
        EXPECT_EQ(place, ++expected);
    EXPECT_EQ(slot(&Next::behindAllOthers), expected + 1);
}

/// A new stage has no parameters, a null time stamp and no parent.
template <class Stage> void expectFreshBase()
{
    const Stage stage;
    EXPECT_TRUE(stage.getSpecificParameters().isEmpty());
    EXPECT_TRUE(stage.getSynchronizer().getDateTime().isNull());
    EXPECT_EQ(stage.getSynchronizer().getFrameNumber(), 0u);
    EXPECT_EQ(stage.parent(), nullptr);
}

/// The copy constructor carries time stamp, parameters and the framework's tables, and takes the parent.
template <class Stage> void expectCopiedBase()
{
    QObject parent;
    auto *stage = new Stage;
    stage->setParent(&parent);
    CSynchronizer stamp;
    stamp.setFrameNumber(7);
    stamp.setDateTime(QDateTime(QDate(2009, 6, 1), QTime(12, 0)));
    stage->setSynchronizer(stamp);
    stage->setSpecificParameters({{"k", 1}});
    stage->d().properties["p"] = "v";

    auto *copy = new Stage(*stage);
    EXPECT_EQ(copy->parent(), &parent);
    EXPECT_EQ(copy->getSynchronizer(), stamp);
    EXPECT_EQ(copy->getSynchronizer().getFrameNumber(), 7u);
    EXPECT_EQ(copy->getSpecificParameters(), (QVariantMap{{"k", 1}}));
    EXPECT_EQ(copy->d().properties.value("p"), "v");
    EXPECT_EQ(copy->d().q_ptr, copy);

    copy->setSpecificParameters({});
    EXPECT_EQ(stage->getSpecificParameters(), (QVariantMap{{"k", 1}}));
}

/// `set` makes the stage hold the object that it is given, and lets go of the one before.
template <class Object, class Set> void expectKeptAndReleased(const QSharedPointer<Object> &held, Set set)
{
    QSharedPointer<Object> first(new Object);
    QSharedPointer<Object> second(new Object);
    set(first);
    EXPECT_EQ(held, first);
    set(second);
    EXPECT_EQ(held, second);
    const QWeakPointer<Object> watched(first);
    first.reset();
    EXPECT_TRUE(watched.isNull());
}

#endif
