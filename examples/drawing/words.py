"""The words on the sample pages.

Plain prose about paper, print and scanning.  Paragraphs are parted by an empty line; *stars* set words in
italics, _bars_ underline them and =signs= lay a marker pen over them.
"""

LETTER = """
Dear Mrs Ashdown,

Thank you for the parcel of eleven notebooks, which reached us on Tuesday without a scratch. We have opened each
of them on the glass and made a first picture of every page, so that you may see what can be read today and
what will need more care.

The first nine are in good order. Their ink is black, the paper is sound, and =a plain grey scan at three hundred dots
to the inch= shows every stroke. The tenth was written in pencil and has been rubbed by the facing page; here we
would like to scan in colour, because the pencil keeps a faint blue shine that a grey picture throws away.

The eleventh notebook has been wet. Some leaves are stuck together at the corner, and the writing of one side
shows through on the other. _Please do not try to part the leaves yourself._ Our binder will lay them between damp
felts for a day, after which they come apart without harm.

The work will take about four weeks. You will receive the pictures on a disk, the notebooks by courier, and a
printed list in which each page has its number, its size and =a short note of its condition.= Nothing will be cut,
pressed or bleached, and nothing leaves the house before you have seen the result.

With kind regards,
"""

BOOK = """
Whoever holds a sheet of old paper against the window sees more than the words that were put upon it. There are the
close, even lines left by the wires of the mould, and the wider ones where those wires were sewn to the ribs
below. There may be the mark of the maker, a jug, a crown or a hand, bent from a piece of wire and known in
every market between the mountains and the sea.

All this was made by water. The rags were sorted, cut and left to rot until they fell into threads; the
hammers of the mill beat them for a day and a night; and what came out of the trough was as thin as milk. The
vatman dipped his mould, lifted it level and gave it one quick shake, first from left to right and then from back to
front. *In that shake lay the whole of the art.* The threads crossed and locked while the water ran away beneath
them, and a sheet was there where a moment before had been only a cloud.

He could not make two alike. A tired arm in the evening left the sheet heavy at one edge, a drop falling from his
sleeve made a clear round spot, and a hair from the felt might lie in the paper for three hundred years. The
printer cursed such faults, for the type bit deep where the sheet was thick and hardly touched it where it was thin.
The reader of today blesses them. By a spot, a hair, a bent wire he knows that two leaves, now parted by
half the world, were dipped on the same morning from the same vat.

When the sheet was dry it drank ink like a sponge. To be written upon it had to be sized, and so it
was drawn through a warm bath of glue boiled from hides, pressed, and hung once more in the loft where the
wind went through the shutters. More paper was spoiled in the size house than anywhere else in the mill,
and the men called it the slaughter house.
"""

BOOK_NOTE = """
* The two movements are still taught in this order; a vatman who has lost his shake is said to have lost
his stroke.
"""

BOOK_BACK = """
The size had other duties. It closed the surface, so that the pen ran lightly and the line stayed sharp, and it made
the sheet rattle when it was shaken, by which the merchant judged it without unfolding the ream. A sheet that made no
sound was sold for wrapping sugar.

From the loft the paper came down to the women of the finishing room. They held each sheet to the light, picked
out the knots with a small knife, and laid it upon one of three heaps, the good, the retree and the broken.
Twenty five sheets made a quire, twenty quires a ream, and the ream was tied in its wrapper and pressed again
until it stood square.

Then came the carrier with his cart. He took the reams to the town on Friday and brought the rags back on Monday, so that
the shirts of one year were the letters of the next. Nothing was wasted, and very little was paid for, and the
river turned the wheel all night.

It is said that a good mill could be heard before it was seen. The hammers fell in threes, and the child who had been
born in the house could not sleep anywhere else. When the wheel stopped for ice the whole valley woke.
"""

MAGAZINE = """
Put a page on the glass and it is already a little wrong. The lid pushes it aside, the hand was in a
hurry, and the text runs uphill by one degree. One degree sounds like nothing. Across the width of a page it is almost
four millimetres, as much as a whole line of print, and the eye sees it at once.

The machine that reads the page sees it too. It looks for lines that lie level and for white bands between
them, and when the lines climb the bands are gone. So the first thing to be done with any page is to ask how far it
was turned, and the second is to turn it back.

The light is wrong as well. The lamp is brighter in the middle of its travel than at the ends, the paper is
yellow at the rim, and near the spine of a book the page bends away into the dark. A fixed limit between black and
white would swallow the margin there and lose the fine strokes here. The answer is a limit that moves: *what is
ink must be darker than the paper around it,* not darker than a number.

Then there is the other side. Thin paper lets the back page shine through, mirrored and pale. It is never
as dark as true ink and never as sharp, and these two weak points give it away.

A photograph asks for the opposite of all this. Nothing in it should be made pure black or pure white, and the
small dots of a printed picture must be blurred before they are made smaller, or they begin to dance in rings across the
sky. A good cleaner therefore looks before it wipes. It finds the picture, leaves it in peace, and
sweeps only around the frame.

What remains is dust. A speck of three dots may be dirt, or the point above a letter, or the end of a sentence. The
only way to know is to ask who its neighbours are. A full stop has a word on its left, and a dot above a letter has the
letter below it. A crumb from the binding has nobody.

Old hands in the workshop keep one more rule, and it hangs framed above the door: *do as little as will
do.* The page was somebody's work. Level it, light it evenly, take away what the years and the machine have
put on it, and then lift your hands.
"""

MAGAZINE_QUOTE = "A good cleaner looks\nbefore it wipes."

MAGAZINE_BACK = """
The reading room opens at nine. Trolleys roll in from the store with the orders of the day, maps in flat boxes,
newspapers in heavy bindings, bundles of letters with their tapes still tied. Every one of them will be
pictured, measured and put back before the doors are closed again.

Nobody here speaks of speed, and yet a good pair of hands turns six hundred pages in an hour. The secret is to
touch every leaf only once. The left hand lifts, the right hand smooths, the lamp goes by, and the leaf is down.
"""

FAX_FIRST = """
Please find on the next two pages the trial you asked for. The first of them is a page of plain text, sent at the fine
setting; the other is our picture of the upper lake, which the machine has turned into dots.

The line was poor this morning. Where you see a black streak along the edge, the lamp of our machine is dirty
and not your paper. The white gaps in the letters come from the same cause. If any number is hard to read, call me
and I will read it out.

May we have your answer by Friday noon? The printer wants to hang the sheets before the rain, and the binder
cannot begin until they are dry.
"""

FAX_SECOND = """
A page sent over the wire has only two colours. Every dot is black or white, and a machine at this end has
decided which, in a hurry, and without asking. Thin strokes break. Small holes fill. The edge of each letter is
ragged, like a coast seen on a map.

It is all the more surprising how well such a page can be read. The eye does not look at the dots but at the
shapes between them, and it forgives a great deal as long as the lines stay level.

1. Turn the page until the lines are level.

2. Take away the single dots that touch nothing.

3. Fill the holes that are smaller than a full stop.

4. Cut the black bar at the edge, where the paper ended.

5. Stop. A page that has been cleaned too well has lost its commas.

The order of these steps matters less than the last of them. Dirt can always be removed tomorrow; a comma that was
taken for dirt will not come back.
"""

FAX_THIRD = """
The upper lake seen from the mill, with the firs on the near bank. The picture was screened with a pattern of
eight by eight dots, which gives sixty four steps of grey and survives the wire.

On the glass it has every tone between white and black. The machine can send only the two ends of that scale, so it
lays many small dots where the lake is dark and few where the sky is bright, and leaves the mixing to your eye. Please
do not clean this page as you would clean a page of text. Each dot of the sky looks like dirt, and a sky without
its dots is only an empty sheet.
"""

FORM_ROWS = [
    ("No.", "Article", "Quantity", "Price", "Amount"),
    ("101", "Laid paper, cream, 120 g", "250", "0.18", "45.00"),
    ("104", "Wove paper, white, 90 g", "1000", "0.06", "60.00"),
    ("117", "Blotting paper, pink", "40", "0.35", "14.00"),
    ("203", "Bookbinder's linen, grey", "6", "11.50", "69.00"),
    ("208", "Linen thread, waxed", "12", "2.25", "27.00"),
    ("315", "Wheat paste, dry, 500 g", "3", "4.80", "14.40"),
    ("322", "Bone folder, large", "2", "7.90", "15.80"),
    ("410", "Iron gall ink, 50 ml", "5", "6.40", "32.00"),
]

FORM_NOTE = """
Goods remain ours until they are paid for. Please look through the parcel on the day it arrives and tell us about
any torn or damp sheet within a week; we replace it without questions.
"""

LEDGER_HEAD = ("Day", "From", "Goods received", "Reams", "Weight")

LEDGER_ROWS = [
    ("2", "Lower Mill", "Foolscap, laid, blue", "14", "112.0"),
    ("2", "Lower Mill", "Pot, wove, second sort", "6", "41.5"),
    ("3", "Bridge End", "Demy, for plates", "20", "236.0"),
    ("5", "Bridge End", "Blotting, grey", "3", "22.5"),
    ("6", "Stony Ford", "Royal, hot pressed", "8", "151.0"),
    ("9", "Lower Mill", "Foolscap, laid, white", "22", "176.0"),
    ("9", "Lower Mill", "Brown wrapping, thick", "10", "198.5"),
    ("10", "Weir House", "Crown, sized twice", "5", "48.0"),
    ("12", "Stony Ford", "Imperial, drawing", "4", "127.0"),
    ("13", "Bridge End", "Demy, for plates", "20", "235.5"),
    ("16", "Lower Mill", "Pot, wove, first sort", "12", "84.0"),
    ("17", "Weir House", "Tissue, in sheets", "2", "7.5"),
    ("19", "Stony Ford", "Medium, cream", "9", "117.0"),
    ("20", "Bridge End", "Cartridge, rough", "7", "133.0"),
    ("23", "Lower Mill", "Foolscap, laid, blue", "14", "111.5"),
    ("24", "Weir House", "Crown, for posters", "16", "150.5"),
    ("26", "Stony Ford", "Royal, hot pressed", "8", "150.0"),
    ("27", "Bridge End", "Marbled, mixed", "1", "9.0"),
    ("30", "Lower Mill", "Brown wrapping, thin", "10", "140.0"),
]

LEDGER_NOTE = """
One ream of the tissue was damp and is drying in the loft. The weights are those of our own scale, which was
tested on the first of the month and found true.
"""
