#include "platform/Accessibility.h"

QList<AXAttributeReply> Accessibility::copyAttributeValues(const QList<AXAttributeRequest>& requests) {
    QList<AXAttributeReply> replies;
    replies.reserve(requests.size());
    for (const AXAttributeRequest& request : requests) {
        AXAttributeReply reply;
        reply.error = copyAttributeValue(request.element, request.attribute, &reply.value);
        replies.append(reply);
    }
    return replies;
}
