-- The headers of answers that the server gives before it has understood the request: it applies
-- no other setting of lighttpd.conf to them.
local headers = lighty.r.resp_header
if not headers["X-Content-Type-Options"] then
    headers["X-Content-Type-Options"] = "nosniff"
    headers["X-Frame-Options"] = "DENY"
    headers["Referrer-Policy"] = "same-origin"
    headers["Cache-Control"] = "no-store"
    headers["Content-Security-Policy"] = "default-src 'none'; style-src 'self'; img-src 'self'; form-action 'self'; base-uri 'none'; frame-ancestors 'none'"
end
return 0
