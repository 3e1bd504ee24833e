// The small array that crosses the boundary to the graphics engine.

#include <climits>
#include <cstring>

#include "base/scratch.h"
#include "quorvex/memory.h"
#include "quorvex/messages.h"
#include "quorvex/selo.h"
#include "value/header.h"

miniM::Dims::Dims(int rows, int cols, int depth) : ndims(depth < 1 ? 2 : 3), dims{rows, cols, 0, 0} {
    if (ndims == 3) dims[2] = depth;
}

miniM::Dims::Dims(int n, const int *extents) : ndims(n < 0 ? 0 : n > 4 ? 4 : n), dims{} {
    for (int k = 0; k < ndims; ++k) dims[k] = extents[k];
}

miniM::miniM() : ndims_(2), dims_{0, 0, 1, 1}, is_string_(0), data_(nullptr) {}

miniM::miniM(const Dims &d, int is_string)
    : ndims_(d.ndims), dims_{1, 1, 1, 1}, is_string_(is_string), data_(nullptr) {
    for (int k = 0; k < ndims_; ++k) dims_[k] = d.dims[k] > 0 ? d.dims[k] : 0;
    kn_size n = 1;
    for (int d : dims_) n = n > INT_MAX ? n : n * d;
    if (n == 0) return;
    if (n <= INT_MAX) data_ = static_cast<double *>(kn_block_alloc(sizeof(double) * static_cast<size_t>(n)));
    if (data_) {
        std::memset(data_, 0, sizeof(double) * static_cast<size_t>(n));
        return;
    }
    ndims_ = 2;
    dims_[0] = dims_[1] = 0;
    dims_[2] = dims_[3] = 1;
    kn::out_of_memory();
}

miniM::~miniM() {
    kn_block_free(data_);
    ndims_ = -1;
}

double &miniM::r(int k) {
    if (k >= 1 && k <= count()) return data_[k - 1];
    error("miniM.r: r out of range");
    static thread_local double scratch;
    scratch = 0;
    return scratch;
}

double *miniM::addr(int offset) {
    if (offset >= 0 && offset <= count()) return data_ ? data_ + offset : nullptr;
    error("miniM addr: offset out of range.");
    return data_;
}
