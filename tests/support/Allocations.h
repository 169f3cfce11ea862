#ifndef TESTS_SUPPORT_ALLOCATIONS_H
#define TESTS_SUPPORT_ALLOCATIONS_H

/// \file
/// How often memory is allocated, on the heap and for matrices.

#include <opencv2/core.hpp>

#include <cstddef>

/// Calls of `operator new` since the program started.
std::size_t heapAllocations();

/// Counts the matrices that are allocated while it lives.
class MatrixAllocations : public cv::MatAllocator
{
public:
    MatrixAllocations() : m_previous(cv::Mat::getDefaultAllocator()) { cv::Mat::setDefaultAllocator(this); }
    ~MatrixAllocations() override { cv::Mat::setDefaultAllocator(m_previous); }
    cv::UMatData *allocate(int dims, const int *sizes, int type, void *data, size_t *step,
                           cv::AccessFlag flags, cv::UMatUsageFlags usage) const override
    {
        ++count;
        return m_previous->allocate(dims, sizes, type, data, step, flags, usage);
    }
    bool allocate(cv::UMatData *data, cv::AccessFlag flags, cv::UMatUsageFlags usage) const override
    {
        ++count;
        return m_previous->allocate(data, flags, usage);
    }
    void deallocate(cv::UMatData *data) const override { m_previous->deallocate(data); }

    mutable int count = 0;

private:
    cv::MatAllocator *m_previous;
};

#endif
