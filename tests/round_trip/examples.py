"""Records with what becomes of them, word for word: the rules that are best seen."""

from facts import RELEASES

SINCE_4 = RELEASES[4:]

NOT_TAKEN = 'Expected: {}. Got: {}.'
LEFT_OUT = ('What stands behind the arguments of a record was left out. Places: 1, the first in '
            'line {} at #{}.')


class Example:
    """`reports` are those shown when every question whether to stop is answered with no."""

    def __init__(self, given, written, releases=RELEASES, reports=()):
        self.given = given
        self.written = written
        self.releases = releases
        self.reports = list(reports)


def same(*lines, releases=RELEASES):
    return Example(lines, lines, releases)


def without(*names):
    return [name for name in RELEASES if name not in names]


EXAMPLES = (
    # --- Derived attributes, absent and missing ones -----------------------------------------
    same('#1=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);'),
    Example(['#1=IFCSIUNIT($,.LENGTHUNIT.,*,.METRE.);'],
            ['#1=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);']),
    same('#1=IFCORIENTEDEDGE(*,*,#2,.T.);', '#2=IFCEDGE(*,*);'),
    Example(["#1=IFCGEOMETRICREPRESENTATIONSUBCONTEXT('Body','Model',*,*,*,*,#2,$,.MODEL_VIEW.,$);",
             "#2=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-05,$,$);"],
            ["#1=IFCGEOMETRICREPRESENTATIONSUBCONTEXT('Body','Model',0,$,*,$,#2,$,.MODEL_VIEW.,$);",
             "#2=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-05,*,$);"],
            without('IFC2X_FINAL')),
    Example(["#1=IFCWALL('g',$,$,$,$,$,$,$);"], ["#1=IFCWALL('g',$,$,$,$,$,$,$,$);"], SINCE_4),
    Example(['#1=IFCWALL();'], ["#1=IFCWALL('',*,$,$,$,$,$,$);"], RELEASES[2:4]),
    Example(['#1=IFCWALL();'], ["#1=IFCWALL('',*,'','',$,$,$,$);"], RELEASES[:2]),
    Example(['#1=IFCDIRECTION();'], ['#1=IFCDIRECTION(());']),
    Example(['#1=IFCDIRECTION($);'], ['#1=IFCDIRECTION(());']),
    Example(['#1=IFCDIRECTION((1,$,*));'], ['#1=IFCDIRECTION((1.,0.,0.));']),
    # --- References ----------------------------------------------------------------------------
    same("#1=IFCPROPERTYSINGLEVALUE('n',$,#2,#3);", "#2=IFCLABEL('x');",
         '#3=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);'),
    same("#1=IFCPROPERTYSINGLEVALUE('n',$,IFCLABEL('x'),#3);",
         '#3=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);'),
    Example(["#1=IFCPROPERTYSINGLEVALUE('n',$,(IFCREAL(1.)),$);"],
            ["#1=IFCPROPERTYSINGLEVALUE('n',$,IFCREAL(1.),$);"]),
    # Neither an entity of another class nor a number that no record has.
    Example(["#1=IFCPROPERTYSINGLEVALUE('n',$,#1,#9);"], ["#1=IFCPROPERTYSINGLEVALUE('n',$,$,$);"],
            RELEASES[3:]),
    Example(["#1=IFCPROPERTYSINGLEVALUE('n',$,#1,#9);"], ["#1=IFCPROPERTYSINGLEVALUE('n',$,*,$);"],
            RELEASES[:3]),
    Example(['#1=IFCCARTESIANPOINT((1.,2.));', '#2=IFCVECTOR(#1,1.5);', '#3=IFCVECTOR(#3,2.5);'],
            ['#1=IFCCARTESIANPOINT((1.,2.));', '#2=IFCVECTOR(*,1.5E+00);',
             '#3=IFCVECTOR(*,2.5E+00);']),
    Example(["#1=IFCRELAGGREGATES('g',#9,$,$,#2,(#3,#2,$,#4,#9));", "#2=IFCSITE('s');",
             '#3=IFCCARTESIANPOINT((1.));', "#4=IFCBUILDING('b');"],
            ["#1=IFCRELAGGREGATES('g',$,$,$,#2,(#2,#4));",
             "#2=IFCSITE('s',$,$,$,$,$,$,$,$,$,$,$,$,$);", '#3=IFCCARTESIANPOINT((1.));',
             "#4=IFCBUILDING('b',$,$,$,$,$,$,$,$,$,$,$);"], SINCE_4),
    Example(['#1=IFCTRIMMEDCURVE($,(#2,IFCPARAMETERVALUE(0.5)),((IFCPARAMETERVALUE(1.)),#1),.T.,'
             '.CARTESIAN.);', '#2=IFCCARTESIANPOINT((0.,1.));'],
            ['#1=IFCTRIMMEDCURVE(*,(#2,IFCPARAMETERVALUE(5.E-01)),(IFCPARAMETERVALUE(1.)),.T.,'
             '.CARTESIAN.);', '#2=IFCCARTESIANPOINT((0.,1.));']),
    # An integer stands for dimensional exponents, which then have neither number nor text.
    Example(['#1=IFCSIUNIT(5,.LENGTHUNIT.,$,.METRE.);'],
            ['#1=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);']),
    # --- Values ------------------------------------------------------------------------------
    Example(['#1=IFCREAL(3.);', '#2=IFCREAL(1.25);', '#3=IFCREAL(0.001);', '#4=IFCREAL(-0.);'],
            ['#1=IFCREAL(3.);', '#2=IFCREAL(1.25E+00);', '#3=IFCREAL(1.E-03);', '#4=IFCREAL(0.);']),
    Example(['#1=IFCREAL(2147483647.);', '#2=IFCREAL(2147483648.);', '#3=IFCREAL(1.E30);'],
            ['#1=IFCREAL(2147483647.);', '#2=IFCREAL(2.147483648E+09);', '#3=IFCREAL(1.E+30);']),
    Example(["#1=IFCLABEL('It''s C:\\\\x \\X\\E9 \\S\\i \\X2\\20AC\\X0\\');"],
            ["#1=IFCLABEL('It''s C:\\\\x \\X2\\00E9\\X0\\ \\X2\\00E9\\X0\\ \\X2\\20AC\\X0\\');"]),
    Example(['#1=IFCCOUNTMEASURE(1234567.);'], ['#1=IFCCOUNTMEASURE(1.23457e+06);'],
            without('IFC4X3_ADD2')),
    Example(['#1=IFCCOUNTMEASURE(1234567.);'], ['#1=IFCCOUNTMEASURE(1234567);'], ['IFC4X3_ADD2']),
    Example(['#1=IFCCOMPOUNDPLANEANGLEMEASURE((49,5,$,-100));'],
            ['#1=IFCCOMPOUNDPLANEANGLEMEASURE((49,5,0,-100));']),
    Example(['#1=IFCBOOLEAN($);', '#2=IFCLOGICAL();'],
            ['#1=IFCBOOLEAN(.F.);', '#2=IFCLOGICAL(.U.);'],
            reports=[NOT_TAKEN.format('enumeration value', 'empty argument'),
                     NOT_TAKEN.format('enumeration value', 'closing bracket')]),
    # The bracket of a typed value in the place of a text is left, so that the record ends there.
    Example(["#1=IFCPROPERTYSINGLEVALUE(IFCLABEL('n'),'d',IFCLABEL('x'),$);"],
            ["#1=IFCPROPERTYSINGLEVALUE('n',$,$,$);"], RELEASES[3:],
            reports=[LEFT_OUT.format(9, 1)]),
    # So does that of a typed value whose number has no point.
    Example(["#1=IFCVECTOR($,IFCREAL(5));", '#2=IFCCARTESIANPOINT((1.,IFCREAL(5),2.));'],
            ['#1=IFCVECTOR(*,0.);', '#2=IFCCARTESIANPOINT((1.,0.));'],
            reports=[NOT_TAKEN.format('IfcInteger or IfcReal', 'IntegerDataTypeToken')] * 2 +
            [LEFT_OUT.format(10, 2)]),
    # --- What comes out is not what would come out of it ---------------------------------------
    Example(['#1=IFCREAL(2.9999999999999996);'], ['#1=IFCREAL(3.E+00);']),
    Example(['#1=IFCREAL(1.7976931348623157E308);', '#2=IFCREAL(inf);', '#3=IFCREAL(-1.E400);'],
            ['#1=IFCREAL(1.79769313486232E+308);', '#2=IFCREAL(inf);', '#3=IFCREAL(-inf);']),
    Example(['#1=IFCNUMERICMEASURE(1000000);', '#2=IFCNUMERICMEASURE(0.00001);',
             '#3=IFCNUMERICMEASURE(-0.);'],
            ['#1=IFCNUMERICMEASURE(1e+06);', '#2=IFCNUMERICMEASURE(1e-05);',
             '#3=IFCNUMERICMEASURE(-0);']),
    Example(["#1=IFCDOORSTYLE('g',$,$,$,$,$,$,$,.DOUBLE_PANEL_SINGLE_SWING_OPPOSITE_LEFT.,.WOOD.,"
             '.T.,.F.);'],
            ["#1=IFCDOORSTYLE('g',$,$,$,$,$,$,$,$,.WOOD.,.T.,.F.);"],
            ('IFC4', 'IFC4X1', 'IFC4X2', 'IFC4X4')),
    Example(["#1=IFCDOORSTYLE('g',$,$,$,$,$,$,$,.DOUBLE_PANEL_SINGLE_SWING_OPPOSITE_RIGHT.,.WOOD.,"
             '.T.,.F.);'],
            ["#1=IFCDOORSTYLE('g',*,$,$,$,$,$,$,$,.WOOD.,.T.,.F.);"], RELEASES[2:4]),
    Example(["#1=IFCDOORTYPE('g',$,$,$,$,$,$,$,$,.DOOR.,.DOUBLE_PANEL_SINGLE_SWING_OPPOSITE_LEFT.,"
             '$,$);'],
            ["#1=IFCDOORTYPE('g',$,$,$,$,$,$,$,$,.DOOR.,$,$,$);"], ['IFC4X3_ADD2']),
    Example(['#1=IFCPRESENTATIONSTYLEASSIGNMENT((#2,IFCNULLSTYLE(.NULL.)));',
             '#2=IFCNULLSTYLE(.NULL.);'],
            ['#1=IFCPRESENTATIONSTYLEASSIGNMENT((#2,IFCNULLSTYLE)));', '#2=IFCNULLSTYLE);'],
            RELEASES[2:7], reports=[LEFT_OUT.format(10, 2)]),
    Example(['#1=IFCVERTEX();', '#2=IFCEDGE(IFCVERTEX(),#1);'],
            ['#1=IFCVERTEX();', '#2=IFCEDGE(IFCVERTEX(),#1);']),
    # --- What ends the reading -----------------------------------------------------------------
    Example(['#1=IFCTRIMMEDCURVE($,(0.5),(1.),.T.,.CARTESIAN.);'], None,
            reports=['Unknown error occurred while reading entity: #1',
                     'Unable to read entity, marker #1. Parsing will be terminate.']),
    Example(['#1=(IFCEDGE()IFCVERTEX());'], None,
            reports=[NOT_TAKEN.format('entity name', 'OpenBracketToken'),
                     'Unable to read entity, marker #1. Parsing will be terminate.']),
)
