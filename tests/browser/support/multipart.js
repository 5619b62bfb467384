// Builds multipart bodies for requests that no browser sends.

export const BOUNDARY = "----board-test-boundary";
export const MULTIPART = `multipart/form-data; boundary=${BOUNDARY}`;

// Returns a part with these header lines and bytes.
export function part(header, bytes) {
    return Buffer.concat([
        Buffer.from(`--${BOUNDARY}\r\n${header}\r\n\r\n`),
        Buffer.from(bytes),
        Buffer.from("\r\n"),
    ]);
}

export function field(name, value) {
    return part(`Content-Disposition: form-data; name="${name}"`, value);
}

export function file(name, bytes, fileName = "a.dat") {
    return part(
        `Content-Disposition: form-data; name="${name}"; filename="${fileName}"\r\n` +
            "Content-Type: application/octet-stream",
        bytes,
    );
}

export const END = Buffer.from(`--${BOUNDARY}--\r\n`);

// Returns the body of the upload form as a browser posts it.
export function uploadBody(bytes, fileName = "a.dat") {
    return Buffer.concat([
        file("filename", bytes, fileName),
        field("hidden_status", "1"),
        field("functionID", "106"),
        field("hidden_procname", ""),
        END,
    ]);
}
