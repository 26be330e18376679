{ A small till, late bound: connect, sell, handle refusals, pay, disconnect.

    C:\FPC\3.2.2\bin\i386-win32\fpc.exe till_late.pas
    .\till_late.exe 127.0.0.1:9100

  For Free Pascal and Delphi. This file is kept in UTF-8. }
program till_late;
{$ifdef FPC}{$mode delphiunicode}{$codepage utf8}{$endif}
{$apptype console}

uses
  ActiveX, ComObj, SysUtils, Variants;

var
  Till: OleVariant;
  { The component writes to these: variables, never expressions. An OleVariant takes a result of any type. }
  Result_, Exresult, Suppress: OleVariant;

procedure Check(Done: Boolean; const Step: string);
begin
  if Done then Exit;
  WriteLn('FAIL ', Step);
  Halt(1);
end;

function Succeeded(const Step: string): Boolean;
begin
  Succeeded := Result_ = 0;
  if Result_ <> 0 then WriteLn('  ', Step, ': ', VarToStr(Result_), ' ', VarToStr(Exresult));
end;

{ The quantity is what somebody typed: a text that is a number is accepted. }
function Sold(const Description: WideString; const Quantity: OleVariant; Price, VatRate: Double): Boolean;
begin
  WriteLn('selling ', VarToStr(Quantity), ' x ', Description);
  Sold := False;
  try
    Till.ItemSale(Description, Quantity, Price, VatRate, 1, Result_, Exresult, Suppress);
    Sold := Succeeded('ItemSale');
  except
    { The call itself is invalid: nothing was sent, and the variables are unchanged. }
    on Error: EOleSysError do
      WriteLn('  ', Error.ClassName, ' ', IntToHex(Error.ErrorCode, 8));
  end;
end;

function Paid(Kind: Smallint; const Description: WideString; Amount: Double): Boolean;
begin
  WriteLn('paying ', Amount:0:2, ' ', Description);
  Till.Payment(Kind, Description, Amount, 0, 0, Result_, Exresult, Suppress);
  Paid := Succeeded('Payment') and not Till.StatusRead.isTransactionOpen;
end;

var
  Port, SerialNumber, Totals: OleVariant;
begin
  CoInitialize(nil);
  Suppress := True;
  Port := '127.0.0.1:9100';
  if ParamCount > 0 then Port := ParamStr(1);

  Till := CreateOleObject('VarlenFiscalQ7734.fiscalTrevikModule');
  Till.Connect_(Port, Result_, Exresult, Suppress);
  Check(Succeeded('Connect_'), 'connecting');
  Till.getSerialNumber(SerialNumber, Result_, Exresult, Suppress);
  Check(Succeeded('getSerialNumber'), 'finding a register');
  WriteLn('register ', VarToStr(SerialNumber));

  Check(Sold('Καφές ελληνικός', 2, 1.80, 24), 'selling coffee');
  { The register has no VAT rate of 17 %. }
  Check(not Sold('Τυρόπιτα', 1, 2.20, 17) and Sold('Τυρόπιτα', 1, 2.20, 13), 'a refused item');
  Check(not Sold('Νερό', 'μισό', 0.50, 13) and Sold('Νερό', '0,5', 0.50, 13), 'an impossible quantity');
  Till.commentPrinterPrint('Σας ευχαριστούμε!', 1, Result_, Exresult, Suppress);
  Check(Succeeded('commentPrinterPrint'), 'thanking');

  Totals := CreateOleObject('VarlenFiscalQ7734.clsTransTotal');
  Till.transactionTotals(Totals, Result_, Exresult, Suppress);
  Check(Succeeded('transactionTotals'), 'asking for the total');
  WriteLn('total ', Double(Totals.receiptTotalAmt):0:2);
  { Change cannot be given on a card. }
  Check(not Paid(2, 'ΚΑΡΤΑ', 10) and Paid(1, 'ΜΕΤΡΗΤΑ', 10), 'paying');

  Till.DisConnect_(Port, Result_, Exresult, Suppress);
  { A closed port is reported as 1, the value of the system call that closed it. }
  Check(Result_ = 1, 'disconnecting');
  WriteLn('ok');
end.
