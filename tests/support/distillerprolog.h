// SPDX-License-Identifier: MIT
#pragma once

namespace VANTIX::TEST {

/// PostScript that runs ahead of a job and gives Ghostscript's pdfwrite the pdfmarks of
/// transparency, which it refuses or drops.
///
/// A state that /SetTransparency makes has a number, which travels in a parameter of the graphics
/// state that nothing else needs here, the smoothness: 0.01 + number / 10^7. So `gsave` and all
/// else that touches the graphics state keep it, and pdfwrite writes a graphics state dictionary
/// wherever it changes. The states themselves stand in the catalog under /StandInStates, as /N and
/// their number. Number 100000 (pdfwrite's own smoothness) is the opaque state; 0, with which the
/// content of a plain form begins, changes nothing.
constexpr const char* kDistillerProlog = R"ps(%!PS
/standIn 60 dict def
standIn begin

/pdfwriteMark systemdict /pdfmark get def
/inherited 0 def
/opaque 100000 def
/margin 3000 def
/states 1000 dict def      % by number
/numbers 1000 dict def     % of states without masks, by text
/lastNumber 0 def
/curves 0 def
/softImages 0 def
/forms 600 array def       % the open ones
/spaces 600 array def      % the matrices that they began with
/depth 0 def
/softImage null def        % the object that the next image becomes
/buffer 200 string def
/used 0 def

/number { currentsmoothness 0.01 sub 1e7 mul round cvi } def
/setNumber { 1e-7 mul 0.01 add setsmoothness } def
/reference { cvx 1 array astore cvx } def                     % name => {name}

% Appends any object as text to the buffer.
/append { 100 string cvs dup buffer used 3 -1 roll putinterval
    length used add /used exch store } def
/appended { buffer 0 used getinterval cvn } def
/numbered { /used 0 store exch append append appended } def   % (text) integer => name

% Files a state: number state => ---
/keep {
    4 dict begin
    /state exch def /index exch def
    states index state put
    mark {standInStates} 1 dict dup (N) index numbered state put /PUT pdfwriteMark
    end
} def

% A curve from 0 to 1 as 256 samples of 16 bits: procedure => {function}
/sampled {
    8 dict begin
    /curve exch def
    /samples 512 string def
    0 1 255 {
        dup 255 div curve
        dup 0 lt { pop 0 } if dup 1 gt { pop 1 } if
        65535 mul round cvi
        exch 2 mul exch
        2 copy -8 bitshift samples 3 1 roll put
        255 and exch 1 add exch samples 3 1 roll put
    } for
    /curves curves 1 add store
    /object (StandInCurve) curves numbered reference def
    mark /_objdef /object load /type /stream /OBJ pdfwriteMark
    mark /object load samples /PUT pdfwriteMark
    mark /object load 5 dict begin
        /FunctionType 0 def /Domain [0 1] def /Range [0 1] def /Size [256] def
        /BitsPerSample 16 def
    currentdict end /PUT pdfwriteMark
    /object load
    end
} def

% What is set lies in the space of its form, or page, wherever the job has moved since, as content
% does that is written in one space: mask => mask
/placed {
    dup length 1 add dict copy
    dup /StandInMatrix depth 0 eq { matrix defaultmatrix } { spaces depth 1 sub get } ifelse put
    dup /TR known {
        dup /TR get xcheck { dup dup /TR get sampled /TR exch put } if
    } if
} def

/isMasked { dup /SMask known { /SMask get type /dicttype eq } { pop false } ifelse } def

/newNumber {                                                  % state => number
    /lastNumber lastNumber 1 add store
    lastNumber exch keep lastNumber
} def

% States without masks are filed once: state => number
/numberOf {
    2 dict begin
    /state exch def
    /used 0 store
    [/ca /CA /BM /AIS /TK /SMask] {
        state 1 index known { state exch get } { pop () } ifelse append ( ) append
    } forall
    /text appended def
    numbers text known not { numbers text state newNumber put } if
    numbers text get
    end
} def

/setTransparency {
    pop >>
    4 dict begin
    /given exch def
    given isMasked { given /SMask given /SMask get placed put } if
    /state states number get dup length given length add dict copy def
    given { state 3 1 roll put } forall
    state dup isMasked { newNumber } { numberOf } ifelse
    end
    setNumber
} def

% pdfwrite believes that a form is drawn in the state that it is defined in, and leaves out what
% is equal. Marks beyond its box, in a state that nothing has, take that belief away.
/forgetState {
    8 dict begin
    gsave newpath initclip
    form /BBox get aload pop
    /top exch def /right exch def /bottom exch def /left exch def
    [left bottom transform right bottom transform left top transform right top transform]
    initmatrix
    /y 1e9 def /x 1e9 def
    aload length 2 idiv {
        itransform dup y lt { /y exch def } { pop } ifelse
        dup x lt { /x exch def } { pop } ifelse
    } repeat
    0.123 0.456 0.789 setrgbcolor true setoverprint
    0.77 setlinewidth 2 setlinecap 2 setlinejoin 3.21 setmiterlimit [3 1] 2 setdash
    x 6 sub y 6 sub 1 1 rectfill
    x 6 sub y 6 sub moveto 1 0 rlineto stroke
    grestore
    end
} def

% A form begins with a state of its own, and is restored to it.
/beginForm {
    pop >>
    /form exch def
    forms depth form put
    spaces depth matrix currentmatrix put
    /depth depth 1 add store
    mark form { 1 index /Group eq { pop pop } if } forall /BP pdfwriteMark
    gsave
    form /Group known { opaque } { inherited } ifelse setNumber
    forgetState
} def

/endForm {
    cleartomark
    grestore
    mark /EP pdfwriteMark
    /depth depth 1 sub store
    /form forms depth get store
    form /Group known {
        mark form /_objdef get 1 dict dup /Group form /Group get put /PUT pdfwriteMark
    } if
} def

/nameImage {
    pop >>
    /given exch def
    given /IsSoftMask known {
        /softImage given /_objdef get store
    } {
        mark /_objdef given /_objdef get /NI pdfwriteMark
        given /SMask known {
            mark given /_objdef get 1 dict dup /SMask given /SMask get put /PUT pdfwriteMark
        } if
    } ifelse
} def

% The samples of a mask are not painted: their image stands in a form that nobody draws.
/paintImage {
    standIn /softImage get null eq {
        systemdict /image get exec
    } {
        standIn begin
        mark /_objdef softImages 1 add dup /softImages exch store
        (StandInImage) exch numbered reference /BBox [0 0 1 1] /BP pdfwriteMark
        mark /_objdef /softImage load /NI pdfwriteMark
        /softImage null store
        end
        gsave initclip systemdict /image get exec grestore
        mark /EP standIn /pdfwriteMark get exec
    } ifelse
} def

/marks 8 dict dup begin
    /SetTransparency /setTransparency def
    /BP /beginForm def
    /EP /endForm def
    /NI /nameImage def
end def

/form null def
/given null def
mark /_objdef {standInStates} /type /dict /OBJ pdfwriteMark
mark {Catalog} 1 dict dup /StandInStates {standInStates} put /PUT pdfwriteMark
inherited 1 dict keep
opaque 8 dict dup begin
    /ca 1 def /CA 1 def /BM /Normal def /AIS false def /TK true def /SMask /None def
end keep
end

/pdfmark {
    dup standIn /marks get exch known {
        standIn begin dup marks exch get load exec end
    } { standIn /pdfwriteMark get exec } ifelse
} def
% What is defined beyond the page, and drawn on it, must not be lost: the page has a margin.
/setpagedevice {
    dup /PageSize known {
        dup length dict copy
        dup /PageSize 2 copy get [ exch { standIn /margin get 2 mul add } forall ] put
        dup /Install { standIn /margin get dup translate } put
    } if
    systemdict /setpagedevice get exec
} def
/image { standIn /paintImage get exec } def
% A cell begins opaque, wherever it is defined.
/makepattern {
    gsave standIn /opaque get standIn /setNumber get exec
    systemdict /makepattern get exec grestore
} def
)ps";

}  // namespace VANTIX::TEST
