// Entries of operations that move pixels to other places.
#include "front/operation_entries.h"

namespace front {

std::vector<Operation> geometry()
{
    Operation mirror = {
        .name = "Mirror",
        .reporter = {"orvMirror", "orvmirr"},
        .sources = 1,
        .depths = {ORV_DEPTH_8U, ORV_DEPTH_8S, ORV_DEPTH_16U, ORV_DEPTH_16S, ORV_DEPTH_32S, ORV_DEPTH_32F},
        .call =
            [](OrvImage *const *images, const Constant &constant) {
                orvSetErrStatus(ORV_STATUS_OK);
                orvMirror(images[0], images[1], constant.flip);
                return orvGetErrStatus();
            },
        .expected = [](std::int32_t, const Sample *sources, const Constant &) { return sources[0]; },
        .refusals = {null(0), header(0), null(1), header(1),
                     differs(Fault::OtherDepth, 1, "(srcImage->depth!=dstImage->depth)"),
                     differs(Fault::Order, 1,
                             "((srcImage->dataOrder != dstImage->dataOrder)&& "
                             "((srcImage->nChannels != 1)&&(dstImage->nChannels != 1)))"),
                     differs(Fault::Origin, 1, "(srcImage->origin != dstImage->origin)"), otherChannels(1), tiled(0),
                     tiled(1), unserved(ORV_DEPTH_1U)},
        .constants = {{.flip = 0}, {.flip = 1}, {.flip = -1}},
    };
    mirror.origin = [](Position at, int width, int height, const Constant &constant) {
        return Position{constant.flip == 0 ? at.x : width - 1 - at.x, constant.flip == 1 ? at.y : height - 1 - at.y};
    };
    mirror.originsAgree = true;
    mirror.orderOfSingleChannelsFree = true;
    mirror.orderFreeAtDepth1U = true;
    mirror.noMaskOnItself = true;
    mirror.returnsNothing = true;
    return {mirror};
}

} // namespace front
