-- What the one document of all chapters needs beyond what stands in them. They link each other by file name;
-- here such a link leads to the heading of the chapter that came from that file, and one that leads nowhere ends
-- the making. Pictures get captions, and short tables a class of their own.

local SHORT = 8  -- rows of a table that stands on one page

local function file_name(path) return path:match('[^/]*$') end

function Pandoc(document)
    local files = PANDOC_STATE.input_files
    local heading_of = {}
    local count = 0
    document:walk({Header = function(header)
        if header.level ~= 1 then return end
        count = count + 1
        if files[count] then heading_of[file_name(files[count])] = header.identifier end
    end})
    if count ~= #files then
        error(count .. ' headings of chapters in ' .. #files .. ' files: each has one, at its beginning')
    end
    return document:walk({Para = function(paragraph)
        local picture = paragraph.content[1]
        if #paragraph.content == 1 and picture.t == 'Image' then
            -- A picture by itself, with what it shows below it.
            local caption = pandoc.Div({pandoc.Plain(picture.caption)}, pandoc.Attr('', {'caption'}))
            return pandoc.Div({pandoc.Plain({picture}), caption}, pandoc.Attr('', {'figure'}))
        end
    end, Table = function(rows)
        if #rows.bodies[1].body <= SHORT then rows.classes:insert('short') end
        return rows
    end, Link = function(link)
        if link.target:match('^%a+:') then return end  -- out of the manual
        local heading = heading_of[link.target]
        if not heading then error('a link leads to ' .. link.target .. ', which is no chapter') end
        link.target = '#' .. heading
        link.classes:insert('chapter')
        return link
    end})
end
