// Operations that only read. They have no destination, so memcpy moves the bytes of the source.
#include "bench_case.h"
#include "bench_images.h"

namespace bench {

std::vector<Case> measureCases()
{
    std::vector<Case> cases;
    for (const int channels : {1, 3})
        cases.push_back({std::string("orvMinMaxFP 32F C") + std::to_string(channels), [channels](int side) {
                             const Image source = image(ORV_DEPTH_32F, channels, side);
                             return Job{[source] {
                                            float min = 0, max = 0;
                                            orvMinMaxFP(source.get(), &min, &max);
                                        },
                                        sampleBytes(source),
                                        static_cast<std::size_t>(side) * static_cast<std::size_t>(side),
                                        source->imageData, nullptr};
                         }});
    return cases;
}

} // namespace bench
