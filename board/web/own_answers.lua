-- Completes the responses that the server itself generates.
local headers = lighty.r.resp_header

-- The headers of responses to requests that the server could not parse. It applies no other setting
-- of lighttpd.conf to them.
if not headers["X-Content-Type-Options"] then
    headers["X-Content-Type-Options"] = "nosniff"
    headers["X-Frame-Options"] = "DENY"
    headers["Referrer-Policy"] = "same-origin"
    headers["Cache-Control"] = "no-store"
    headers["Content-Security-Policy"] = "default-src 'none'; style-src 'self'; img-src 'self'; form-action 'self'; base-uri 'none'; frame-ancestors 'none'"
end

-- Returns the board's name as HTML; nil if the back-end has not published it.
local function board_name()
    local file = io.open(os.getenv("BOARD_ROOT") .. "/var/run/board_properties")
    if not file then
        return nil
    end
    local name = file:read("a"):match("\nname=([^\n]+)")
    file:close()
    return name and name:gsub("[&<>]", { ["&"] = "&amp;", ["<"] = "&lt;", [">"] = "&gt;" })
end

-- An error page has the board's name in its title and its header, like every other page.
local status = lighty.r.req_item.http_status
local page = status >= 400 and lighty.r.resp_body.get
if page and page:find("<!--board-->", 1, true) then
    local name = board_name()
    if name then
        page = page:gsub("(<title>.- %- )(.-</title>)", function(before, after)
            return before .. name .. " - " .. after
        end)
        page = page:gsub("<!%-%-board%-%->", function()
            return '<bdi class="board-name">' .. name .. "</bdi>"
        end)
        lighty.r.resp_body.set({ page })
        return status
    end
end
return 0
