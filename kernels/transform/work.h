// The work buffer of a transform: the caller's, one on the stack where little is needed, or one of its own. To be
// included inside the unnamed namespace of a region. The includer has memory.h and plans.h.

class Work {
public:
    Work(std::int32_t size, void *given)
    {
        if (size == 0) {
            start_ = small_;
            return;
        }
        if (given == nullptr)
            given = own_ = memoryFunctions.allocateBlock(static_cast<std::size_t>(size) + workAlignment);
        const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(given), last = workAlignment - 1;
        if (given != nullptr)
            start_ = reinterpret_cast<float *>((address + last) & ~last);
    }
    ~Work()
    {
        if (own_ != nullptr)
            memoryFunctions.releaseBlock(own_);
    }
    Work(const Work &) = delete;
    Work &operator=(const Work &) = delete;

    // Null where memory is exhausted.
    float *start() const { return start_; }

private:
    void *own_ = nullptr;
    float *start_ = nullptr;
    alignas(workAlignment) float small_[smallWorkBytes / sizeof(float)];
};
