// The board's messages for the files that it refuses.
const refusals = {
    empty: "{{message 33-1028|script}}",
    large: "{{message 63-1028|script}}",
    name: "{{message 63-1026|script}}",
};
