// Transforms of batches. To be included in a region, outside its unnamed namespace; batch.cpp defines these.

// The forward transform of each sequence of a batch: `data` and `scratch` have as much room as the plan says, on
// boundaries of 32 bytes. What comes out stands in one of them, which is given back; the other is overwritten, too. An
// inverse transform has the real and imaginary parts of its elements exchanged on both sides.
float *transformBatch(const FourierPlan &plan, float *data, float *scratch);

// Some passes of a plan, from `first` up to the one before `last`, in the same way.
float *runPasses(const FourierPlan &plan, std::int32_t first, std::int32_t last, float *data, float *scratch);
