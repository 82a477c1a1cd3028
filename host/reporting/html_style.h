// How reports in HTML look, and what sorts their tables.
#pragma once

#include <string_view>

namespace brenvolt {

inline constexpr std::string_view kHtmlStyle = R"css(
:root{color-scheme:light dark;--text:#1d1f23;--faint:#5c626b;--page:#fff;--soft:#f4f6f8;--line:#d8dde3;--link:#005a9c;
--caution:#9a4a00;--cautionPage:#fff4e5;--warning:#a01c1c;--warningPage:#fdecec}
*{box-sizing:border-box}
html{scroll-behavior:smooth}
body{margin:0 auto;padding:1.5rem;max-width:76rem;font:16px/1.5 system-ui,"Segoe UI",Roboto,"Noto Sans","DejaVu Sans",
sans-serif;color:var(--text);background:var(--page);overflow-wrap:break-word}
header{border-bottom:2px solid var(--line);margin-bottom:1.5rem}
h1{font-size:1.9rem;line-height:1.2;margin:0 0 .4rem}
h2{font-size:1.4rem;margin:2.4rem 0 .6rem;padding-bottom:.2rem;border-bottom:1px solid var(--line)}
h3{font-size:1.15rem;margin:2rem 0 .5rem}
h4{font-size:1rem;margin:1.4rem 0 .4rem}
h2,h3,h4{line-height:1.3}
p{margin:.5rem 0;max-width:48rem}
header p{color:var(--faint);margin-bottom:1rem}
a{color:var(--link)}
nav{background:var(--soft);border:1px solid var(--line);border-radius:6px;padding:.7rem 1.2rem;margin:0 0 1.5rem}
nav ul{margin:.2rem 0;padding-left:1.1rem;list-style:none}
nav>ul{padding-left:0}
nav ul ul{columns:14rem;column-gap:2rem}
nav h2{font-size:1rem;border:0;margin:0;padding:0}
.scroll{overflow-x:auto;margin:.8rem 0}
table{border-collapse:collapse;font-size:.92rem;font-variant-numeric:tabular-nums}
caption{text-align:left;font-weight:600;padding:.2rem .6rem .2rem 0}
th,td{padding:.28rem .7rem;text-align:left;vertical-align:top;border-bottom:1px solid var(--line)}
th{border-bottom:2px solid var(--line);background:var(--soft);white-space:nowrap}
td{min-width:3rem}
.n{text-align:right;white-space:nowrap}
tbody tr:hover{background:var(--soft)}
td div{color:var(--faint);font-size:.88rem}
th button{all:unset;cursor:pointer}
th button:focus-visible{outline:2px solid var(--link);outline-offset:2px}
th[aria-sort=ascending] button::after{content:" \25B2"}
th[aria-sort=descending] button::after{content:" \25BC"}
dl{display:grid;grid-template-columns:max-content 1fr;gap:.15rem 1.2rem;margin:.6rem 0}
dt{color:var(--faint)}
dd{margin:0;overflow-wrap:anywhere}
pre{background:var(--soft);border:1px solid var(--line);border-radius:6px;padding:.7rem 1rem;overflow-x:auto;
font:.88rem/1.45 ui-monospace,"DejaVu Sans Mono",Menlo,Consolas,monospace;white-space:pre-wrap;overflow-wrap:anywhere}
.note,.caution,.warning{border-left:4px solid var(--line);background:var(--soft);padding:.4rem .8rem;margin:.6rem 0;
max-width:60rem}
.caution{border-color:var(--caution);background:var(--cautionPage)}
.warning{border-color:var(--warning);background:var(--warningPage)}
.caution b{color:var(--caution)}
.warning b{color:var(--warning)}
.pictures{display:grid;grid-template-columns:repeat(auto-fit,minmax(min(24rem,100%),1fr));gap:1rem;margin:1rem 0}
figure{margin:0;border:1px solid var(--line);border-radius:6px;overflow:hidden}
figure.whole{grid-column:1/-1;max-width:48rem}
figure svg{display:block;width:100%;height:auto}
@media screen and (prefers-color-scheme:dark){
:root{--text:#e6e8eb;--faint:#a8adb5;--page:#15171b;--soft:#1b1e23;--line:#353b44;--link:#7cc0ff;
--caution:#ffb066;--cautionPage:#2d2317;--warning:#ff8f8f;--warningPage:#331b1b}}
@media print{
body{max-width:none;padding:0;font-size:10pt}
nav,th button::after{display:none}
a{color:inherit;text-decoration:none}
h2,h3,h4{break-after:avoid}
figure,tr,.note,.caution,.warning{break-inside:avoid}
thead{display:table-header-group}
.scroll{overflow:visible}
pre,th,nav,.note,.caution,.warning{-webkit-print-color-adjust:exact;print-color-adjust:exact}}
)css";

// A click on a heading sorts by its column, numbers by value, texts by the reader's language; a second one turns the order
// round. Cells without a number come last.
inline constexpr std::string_view kHtmlScript = R"js(
document.querySelectorAll('table').forEach(function(table){
  var body=table.tBodies[0];
  if(!body||body.rows.length<2)return;
  Array.prototype.forEach.call(table.tHead.rows[0].cells,function(head,column){
    if(!head.textContent)return;
    var button=document.createElement('button');
    button.type='button';
    button.title='Sort by this column';
    while(head.firstChild)button.appendChild(head.firstChild);
    head.appendChild(button);
    button.addEventListener('click',function(){
      var up=head.getAttribute('aria-sort')!=='ascending';
      Array.prototype.forEach.call(head.parentNode.cells,function(other){other.removeAttribute('aria-sort')});
      head.setAttribute('aria-sort',up?'ascending':'descending');
      var isNumber=head.className==='n';
      var rows=Array.prototype.map.call(body.rows,function(row,place){
        var cell=row.cells[column],text=cell?cell.firstChild?cell.firstChild.textContent:'':'';
        return{row:row,place:place,key:isNumber?parseFloat(text.replace('<','')):text};
      });
      rows.sort(function(a,b){
        if(isNumber&&(isNaN(a.key)||isNaN(b.key)))return isNaN(a.key)-isNaN(b.key)||a.place-b.place;
        var order=isNumber?a.key-b.key:a.key.localeCompare(b.key);
        return(up?order:-order)||a.place-b.place;
      });
      rows.forEach(function(one){body.appendChild(one.row)});
    });
  });
});
)js";

}  // namespace brenvolt
